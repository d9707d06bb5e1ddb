// Setting records from hostile bytes. The first byte picks the record: entity setting,
// subscription setting or basic subscription setting; the rest is its parcel. A decoded entity
// must also render its JSON form with its own values.
#include <cstddef>
#include <cstdint>
#include <memory>

#include <json/value.h>

#include "fuzz/record_fuzz_util.h"
#include "kavo/push/model/entity_setting.h"
#include "kavo/push/model/subscribe_notification_setting.h"

using namespace Kavo;
using namespace Kavo::Push;

namespace {

using RecordFuzz::Source;

EntitySetting BuildEntity(Source& in)
{
    EntitySetting entity;
    entity.SetEntityId(in.String());
    entity.SetEntityName(in.String());
    if (in.Bool()) {
        entity.SetEnable(std::make_shared<bool>(in.Bool()));
    }
    entity.SetEntityType(static_cast<EntityType>(in.Int32()));
    if (in.Bool()) {
        entity.SetExtraInfo(in.Params());
    }
    return entity;
}

SubscribeNotificationSetting BuildSubscription(Source& in)
{
    SubscribeNotificationSetting setting;
    setting.SetBundleName(in.String());
    if (in.Bool()) {
        setting.SetEnabled(std::make_shared<bool>(in.Bool()));
    }
    return setting;
}

SubscribeNotificationBasicSetting BuildBasic(Source& in)
{
    SubscribeNotificationBasicSetting setting;
    setting.SetEnabled(in.Bool());
    return setting;
}

void CheckJson(const uint8_t* data, size_t size)
{
    Parcel parcel;
    if (!parcel.ParseFrom(data, size)) {
        return;
    }
    sptr<EntitySetting> entity = EntitySetting::Unmarshalling(parcel);
    if (entity == nullptr) {
        return;
    }
    Json::Value json;
    entity->ToJsonValue(json);
    const Json::ArrayIndex keys = entity->GetEnable() != nullptr ? 4 : 3;
    if (json.size() != keys || json["entityId"].asString() != entity->GetEntityId() ||
        json["entityName"].asString() != entity->GetEntityName() ||
        json["entityType"].asInt() != static_cast<int>(entity->GetEntityType())) {
        RecordFuzz::Breach("an entity's JSON form does not hold its values");
    }
}

void CheckEntity(const uint8_t* data, size_t size)
{
    RecordFuzz::CheckDecodedAndBuilt<EntitySetting, BuildEntity,
                                     RecordFuzz::CheckRoundTripWithParams<EntitySetting, &EntitySetting::GetExtraInfo>>(
        data, size);
    CheckJson(data, size);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    RecordFuzz::QuietLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const RecordFuzz::Check checks[] = {
        CheckEntity,
        RecordFuzz::CheckDecodedAndBuilt<SubscribeNotificationSetting, BuildSubscription>,
        RecordFuzz::CheckDecodedAndBuilt<SubscribeNotificationBasicSetting, BuildBasic>,
    };
    return RecordFuzz::Dispatch(data, size, checks);
}
