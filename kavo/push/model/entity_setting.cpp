#include "kavo/push/model/entity_setting.h"

#include <new>

#include <json/value.h>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

void EntitySetting::ToJsonValue(Json::Value& json) const
{
    // Indexing any other kind of value would make jsoncpp throw.
    if (!json.isNull() && !json.isObject()) {
        PUSH_LOGE("EntitySetting::ToJsonValue: json is not an object");
        return;
    }
    json["entityId"] = entityId_;
    json["entityName"] = entityName_;
    if (enable_ != nullptr) {
        json["enable"] = *enable_;
    }
    json["entityType"] = static_cast<Json::Int>(entityType_);
}

bool EntitySetting::Marshalling(Parcel& parcel) const
{
    const uint64_t flags = (enable_ != nullptr ? ENABLE_FLAG : 0) | (extraInfo_ != nullptr ? EXTRA_INFO_FLAG : 0);
    if (!parcel.WriteUint64(flags)) {
        return Fail("EntitySetting::Marshalling: Write Flags Error");
    }
    return WriteFields(parcel);
}

bool EntitySetting::WriteFields(Parcel& parcel) const
{
    if (!parcel.WriteString(entityId_)) {
        return Fail("EntitySetting::Marshalling: Write EntityId Error");
    }
    if (!parcel.WriteString(entityName_)) {
        return Fail("EntitySetting::Marshalling: Write EntityName Error");
    }
    if (enable_ != nullptr && !parcel.WriteBool(*enable_)) {
        return Fail("EntitySetting::Marshalling: Write Enable Error");
    }
    if (!parcel.WriteInt32(entityType_)) {
        return Fail("EntitySetting::Marshalling: Write EntityType Error");
    }
    if (extraInfo_ != nullptr && !parcel.WriteParcelable(extraInfo_.get())) {
        return Fail("Write extraInfo error");
    }
    return true;
}

bool EntitySetting::ReadFromParcel(Parcel& parcel)
{
    // Bits 2 to 63 belong to no part and are ignored.
    const uint64_t flags = parcel.ReadUint64();
    if (!parcel.ReadString(entityId_)) {
        return Fail("EntitySetting::ReadFromParcel: Read EntityId Error");
    }
    if (!parcel.ReadString(entityName_)) {
        return Fail("EntitySetting::ReadFromParcel: Read EntityName Error");
    }
    if ((flags & ENABLE_FLAG) != 0) {
        enable_ = std::make_shared<bool>(parcel.ReadBool());
    }
    entityType_ = static_cast<EntityType>(parcel.ReadInt32());
    if ((flags & EXTRA_INFO_FLAG) == 0) {
        return true;
    }
    return internal::ReadWantParams(parcel, extraInfo_, "Read WantParams error", "New WantParams error");
}

sptr<EntitySetting> EntitySetting::Unmarshalling(Parcel& parcel)
{
    return internal::ConstructThenFill<EntitySetting>(parcel, internal::LogAndReport, "New EntitySetting error");
}

bool EntitySetting::operator==(const EntitySetting& other) const
{
    using internal::OptionalEqual;
    return entityId_ == other.entityId_ && entityName_ == other.entityName_ && OptionalEqual(enable_, other.enable_) &&
           entityType_ == other.entityType_ && OptionalEqual(extraInfo_, other.extraInfo_);
}

}  // namespace Kavo::Push
