// EntitySetting: switches the notifications of one entity (type, id and name) on or off, with
// optional extra parameters, and renders itself as a JSON object. Not safe for concurrent
// mutation; share it only once filled.
#ifndef KAVO_PUSH_MODEL_ENTITY_SETTING_H
#define KAVO_PUSH_MODEL_ENTITY_SETTING_H

#include <cstdint>
#include <memory>
#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/host/want/want_params.h"
#include "kavo/push/common/push_export.h"

namespace Json {
class Value;
}

namespace Kavo::Push {

// The kind of an entity. Its values are the push service's; the record carries any 32-bit value.
enum EntityType : int32_t {};

class KAVO_PUSH_EXPORT EntitySetting : public Parcelable {
public:
    // Bits of the flags word, one per optional part.
    static constexpr uint64_t ENABLE_FLAG = 1;
    static constexpr uint64_t EXTRA_INFO_FLAG = 2;

    EntitySetting() = default;
    ~EntitySetting() override = default;

    std::string GetEntityId() const { return entityId_; }
    void SetEntityId(const std::string& entityId) { entityId_ = entityId; }
    std::string GetEntityName() const { return entityName_; }
    void SetEntityName(const std::string& entityName) { entityName_ = entityName; }
    // Null when the switch was never set, which differs from a switch set to false.
    std::shared_ptr<bool> GetEnable() const { return enable_; }
    void SetEnable(const std::shared_ptr<bool>& enable) { enable_ = enable; }
    EntityType GetEntityType() const { return entityType_; }
    void SetEntityType(const EntityType& entityType) { entityType_ = entityType; }
    std::shared_ptr<AAFwk::WantParams> GetExtraInfo() const { return extraInfo_; }
    void SetExtraInfo(const std::shared_ptr<AAFwk::WantParams>& extraInfo) { extraInfo_ = extraInfo; }

    // Sets "entityId", "entityName", "enable" (only when set) and "entityType" on `json`,
    // leaving its other members alone; the extra parameters are not rendered. A `json` that
    // holds neither null nor an object is left untouched.
    void ToJsonValue(Json::Value& json) const;

    // The flags word, the id, the name, the switch (when set), the type, then the extra
    // parameters behind their presence word (when set).
    bool Marshalling(Parcel& parcel) const override;
    static sptr<EntitySetting> Unmarshalling(Parcel& parcel);
    // The flags word, the switch and the type are read leniently (a short parcel gives 0).
    bool ReadFromParcel(Parcel& parcel);

    bool operator==(const EntitySetting& other) const;
    bool operator!=(const EntitySetting& other) const { return !(*this == other); }

private:
    bool WriteFields(Parcel& parcel) const;

    std::string entityId_;
    std::string entityName_;
    std::shared_ptr<bool> enable_;
    EntityType entityType_ = EntityType{};
    std::shared_ptr<AAFwk::WantParams> extraInfo_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_ENTITY_SETTING_H
