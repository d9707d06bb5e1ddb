// Entity and subscription settings: layouts, flags words, lenient reads, truncated parcels,
// failed writes and the JSON form of an entity setting.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <json/value.h>

#include "kavo/host/want/want_params.h"
#include "kavo/push/model/entity_setting.h"
#include "kavo/push/model/subscribe_notification_setting.h"
#include "tests/push/model/model_test_util.h"

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

const char* const ENTITY_ERROR = "New EntitySetting error";
const char* const SUBSCRIBE_ERROR = "New SubscribeNotificationSetting error";

std::shared_ptr<AAFwk::WantParams> Params()
{
    auto params = std::make_shared<AAFwk::WantParams>();
    params->SetParam("k", AAFwk::WantParams::Value(int32_t{7}));
    return params;
}

EntitySetting Entity(std::shared_ptr<bool> enable, std::shared_ptr<AAFwk::WantParams> extraInfo)
{
    EntitySetting entity;
    entity.SetEntityId("e1");
    entity.SetEntityName("n");
    entity.SetEnable(enable);
    entity.SetEntityType(static_cast<EntityType>(3));
    entity.SetExtraInfo(extraInfo);
    return entity;
}

SubscribeNotificationSetting Subscription(std::shared_ptr<bool> enabled)
{
    SubscribeNotificationSetting setting;
    setting.SetBundleName("com.a");
    setting.SetEnabled(enabled);
    return setting;
}

SubscribeNotificationBasicSetting Basic(bool enabled)
{
    SubscribeNotificationBasicSetting setting;
    setting.SetEnabled(enabled);
    return setting;
}

std::shared_ptr<bool> Flag(bool value)
{
    return std::make_shared<bool>(value);
}

class SettingTest : public ::testing::Test {};

TEST_F(SettingTest, LayoutsFollowTheWireFormatAndReadBackEqual)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        Bytes expected;
        Decoder readBack;
    };
    const EntitySetting bare = Entity(nullptr, nullptr);
    const EntitySetting disabled = Entity(Flag(false), nullptr);
    const EntitySetting extra = Entity(nullptr, Params());
    const EntitySetting full = Entity(Flag(true), Params());
    const Bytes params = Wire().I32(1).Str("k").I32(3).I32(7).Done();
    const Case cases[] = {
        {"an entity without options is flags 0, two strings and the type", std::make_shared<EntitySetting>(bare),
         Wire().U64(0).Str("e1").Str("n").I32(3).Done(), EqualTo(bare)},
        {"a switch set to false is flags 1 and a false", std::make_shared<EntitySetting>(disabled),
         Wire().U64(1).Str("e1").Str("n").Bool(false).I32(3).Done(), EqualTo(disabled)},
        {"extra parameters alone are flags 2 and the parameters last", std::make_shared<EntitySetting>(extra),
         Wire().U64(2).Str("e1").Str("n").I32(3).I32(1).Append(params).Done(), EqualTo(extra)},
        {"both options are flags 3", std::make_shared<EntitySetting>(full),
         Wire().U64(3).Str("e1").Str("n").Bool(true).I32(3).I32(1).Append(params).Done(), EqualTo(full)},
        {"a subscription without a switch is flags 0 and the name",
         std::make_shared<SubscribeNotificationSetting>(Subscription(nullptr)), Wire().U64(0).Str("com.a").Done(),
         EqualTo(Subscription(nullptr))},
        {"a subscription with a switch is flags 1, the name and the switch",
         std::make_shared<SubscribeNotificationSetting>(Subscription(Flag(true))),
         Wire().U64(1).Str("com.a").Bool(true).Done(), EqualTo(Subscription(Flag(true)))},
        {"a basic setting is one boolean", std::make_shared<SubscribeNotificationBasicSetting>(Basic(true)),
         Wire().Bool(true).Done(), EqualTo(Basic(true))},
        {"a basic setting switched off is one false", std::make_shared<SubscribeNotificationBasicSetting>(Basic(false)),
         Wire().Bool(false).Done(), EqualTo(Basic(false))},
    };
    for (const auto& c : cases) {
        Watch watch;
        const Bytes bytes = Marshal(*c.record);
        EXPECT_EQ(bytes, c.expected) << c.name;
        Parcel parcel = ParcelOf(bytes);
        EXPECT_TRUE(c.readBack(parcel)) << c.name;
        watch.Expect({}, c.name);
    }
}

TEST_F(SettingTest, ParcelsFromOtherProcessesReadAsTheirFlagsSay)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        Outcome outcome;
    };
    EntitySetting untyped = Entity(nullptr, nullptr);
    untyped.SetEntityType(EntityType{});
    const Case cases[] = {
        {"a subscription that ends after flags 1 and the name reads a false switch",
         EqualTo(Subscription(Flag(false))), Wire().U64(1).Str("com.a").Done(), {true, {}}},
        {"subscription flag bits above the first are ignored", EqualTo(Subscription(nullptr)),
         Wire().U64(~1ull).Str("com.a").Done(), {true, {}}},
        {"an empty subscription parcel lacks its name", DecoderOf<SubscribeNotificationSetting>(), {},
         {false, {"SubscribeNotificationSetting: Read BundleName Error", SUBSCRIBE_ERROR}}},
        {"an entity whose type is missing reads type 0", EqualTo(untyped), Wire().U64(0).Str("e1").Str("n").Done(),
         {true, {}}},
        {"entity flag bits above the second are ignored", EqualTo(Entity(nullptr, nullptr)),
         Wire().U64(~3ull).Str("e1").Str("n").I32(3).Done(), {true, {}}},
        {"an empty entity parcel lacks its id", DecoderOf<EntitySetting>(), {},
         {false, {"EntitySetting::ReadFromParcel: Read EntityId Error", ENTITY_ERROR}}},
        {"an entity announcing parameters with presence word 0 is refused", DecoderOf<EntitySetting>(),
         Wire().U64(2).Str("e1").Str("n").I32(3).I32(0).Done(), {false, {"Read WantParams error", ENTITY_ERROR}}},
        {"an empty basic setting parcel is refused", DecoderOf<SubscribeNotificationBasicSetting>(), {},
         {false, {"SubscribeNotificationBasicSetting unmarshalling error"}}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        EXPECT_EQ(c.decode(parcel), c.outcome.decodes) << c.name;
        watch.Expect(c.outcome.logs, c.name);
    }
}

TEST_F(SettingTest, EveryCutOfAParcelDecodesOrFailsWithItsLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        std::vector<Region> regions;
    };
    const Case cases[] = {
        // The switch and the type are read leniently, so a parcel cut there fails only at the
        // parameters, whose presence word is then missing.
        {"entity", DecoderOf<EntitySetting>(), Marshal(Entity(Flag(false), Params())),
         {{16, {false, {"EntitySetting::ReadFromParcel: Read EntityId Error", ENTITY_ERROR}}},
          {24, {false, {"EntitySetting::ReadFromParcel: Read EntityName Error", ENTITY_ERROR}}},
          {56, {false, {"Read WantParams error", ENTITY_ERROR}}}}},
        {"subscription", DecoderOf<SubscribeNotificationSetting>(), Marshal(Subscription(Flag(true))),
         {{20, {false, {"SubscribeNotificationSetting: Read BundleName Error", SUBSCRIBE_ERROR}}},
          {24, {true, {}}}}},
        {"basic setting", DecoderOf<SubscribeNotificationBasicSetting>(), Marshal(Basic(true)),
         {{4, {false, {"SubscribeNotificationBasicSetting unmarshalling error"}}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryCut(c.decode, c.bytes, c.regions, c.name);
    }
}

TEST_F(SettingTest, EveryFailedWriteStopsWithItsLines)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        std::vector<WriteRegion> regions;
    };
    const Case cases[] = {
        {"entity", std::make_shared<EntitySetting>(Entity(Flag(false), Params())),
         {{8, {"EntitySetting::Marshalling: Write Flags Error"}},
          {16, {"EntitySetting::Marshalling: Write EntityId Error"}},
          {24, {"EntitySetting::Marshalling: Write EntityName Error"}},
          {28, {"EntitySetting::Marshalling: Write Enable Error"}},
          {32, {"EntitySetting::Marshalling: Write EntityType Error"}},
          {56, {"Write extraInfo error"}}}},
        {"subscription", std::make_shared<SubscribeNotificationSetting>(Subscription(Flag(true))),
         {{8, {"SubscribeNotificationSetting::Marshalling: Write Flags Error"}},
          {20, {"SubscribeNotificationSetting::Marshalling: Write BundleName Error"}},
          {24, {"SubscribeNotificationSetting::Marshalling: Write Enabled Error"}}}},
        {"basic setting", std::make_shared<SubscribeNotificationBasicSetting>(Basic(true)),
         {{4, {"SubscribeNotificationBasicSetting: Marshal Failed"}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryWriteFailure(*c.record, c.regions, c.name);
    }
}

Json::Value Object(std::initializer_list<std::pair<const char*, Json::Value>> members)
{
    Json::Value object(Json::objectValue);
    for (const auto& [key, value] : members) {
        object[key] = value;
    }
    return object;
}

TEST_F(SettingTest, JsonFormSetsItsKeysAndKeepsTheRest)
{
    struct Case {
        const char* name;
        EntitySetting entity;
        Json::Value before;
        Json::Value expected;
    };
    EntitySetting negative = Entity(nullptr, Params());
    negative.SetEntityType(static_cast<EntityType>(-2));
    const Case cases[] = {
        {"without a switch only id, name and type are set", Entity(nullptr, nullptr), Json::Value(),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"entityType", 3}})},
        {"a switch set to false is rendered", Entity(Flag(false), nullptr), Json::Value(Json::objectValue),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"enable", false}, {"entityType", 3}})},
        {"other members stay and own keys are replaced", Entity(Flag(true), nullptr),
         Object({{"other", 1}, {"entityId", "old"}}),
         Object({{"other", 1}, {"entityId", "e1"}, {"entityName", "n"}, {"enable", true}, {"entityType", 3}})},
        {"extra parameters are not rendered and the type may be negative", negative, Json::Value(),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"entityType", -2}})},
        {"a value that is not an object is left untouched", Entity(Flag(true), nullptr), Json::Value("text"),
         Json::Value("text")},
    };
    for (const auto& c : cases) {
        Json::Value json = c.before;
        c.entity.ToJsonValue(json);
        EXPECT_EQ(json, c.expected) << c.name << ": " << json.toStyledString();
    }
}

}  // namespace
