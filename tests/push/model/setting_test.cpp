// Entity and subscription settings: layouts, flags words, lenient reads, truncated parcels,
// failed writes and the JSON form of an entity setting.
#include <cstdint>
#include <memory>
#include <string>

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
const char* const BASIC_ERROR = "SubscribeNotificationBasicSetting unmarshalling error";

std::shared_ptr<AAFwk::WantParams> Params()
{
    auto params = std::make_shared<AAFwk::WantParams>();
    params->SetParam("k", AAFwk::WantParams::Value(int32_t{7}));
    return params;
}

std::shared_ptr<bool> Flag(bool value)
{
    return std::make_shared<bool>(value);
}

std::shared_ptr<EntitySetting> Entity(const std::shared_ptr<bool>& enable,
                                      const std::shared_ptr<AAFwk::WantParams>& extraInfo, int32_t type = 3)
{
    auto entity = std::make_shared<EntitySetting>();
    entity->SetEntityId("e1");
    entity->SetEntityName("n");
    entity->SetEnable(enable);
    entity->SetEntityType(static_cast<EntityType>(type));
    entity->SetExtraInfo(extraInfo);
    return entity;
}

std::shared_ptr<SubscribeNotificationSetting> Subscription(const std::shared_ptr<bool>& enabled)
{
    auto setting = std::make_shared<SubscribeNotificationSetting>();
    setting->SetBundleName("com.a");
    setting->SetEnabled(enabled);
    return setting;
}

std::shared_ptr<SubscribeNotificationBasicSetting> Basic(bool enabled)
{
    auto setting = std::make_shared<SubscribeNotificationBasicSetting>();
    setting->SetEnabled(enabled);
    return setting;
}

class SettingTest : public ::testing::Test {};

TEST_F(SettingTest, LayoutsFollowTheWireFormatAndReadBackEqual)
{
    const Bytes params = Wire().I32(1).I32(1).Str("k").I32(3).I32(7).Done();
    const Bytes head = Wire().Str("e1").Str("n").Done();
    ExpectLayouts({
        {"an entity without options is flags 0, two strings and the type", Entity(nullptr, nullptr),
         Wire().U64(0).Append(head).I32(3).Done(), EqualTo(*Entity(nullptr, nullptr))},
        {"a switch set to false is flags 1 and a false", Entity(Flag(false), nullptr),
         Wire().U64(1).Append(head).Bool(false).I32(3).Done(), EqualTo(*Entity(Flag(false), nullptr))},
        {"extra parameters alone are flags 2 and the parameters last", Entity(nullptr, Params()),
         Wire().U64(2).Append(head).I32(3).Append(params).Done(), EqualTo(*Entity(nullptr, Params()))},
        {"both options are flags 3", Entity(Flag(true), Params()),
         Wire().U64(3).Append(head).Bool(true).I32(3).Append(params).Done(), EqualTo(*Entity(Flag(true), Params()))},
        {"a subscription without a switch is flags 0 and the name", Subscription(nullptr),
         Wire().U64(0).Str("com.a").Done(), EqualTo(*Subscription(nullptr))},
        {"a subscription with a switch is flags 1, the name and the switch", Subscription(Flag(true)),
         Wire().U64(1).Str("com.a").Bool(true).Done(), EqualTo(*Subscription(Flag(true)))},
        {"a basic setting is one boolean", Basic(true), Wire().Bool(true).Done(), EqualTo(*Basic(true))},
        {"a basic setting switched off is one false", Basic(false), Wire().Bool(false).Done(), EqualTo(*Basic(false))},
    });
}

TEST_F(SettingTest, ParcelsFromOtherProcessesReadAsTheirFlagsSay)
{
    ExpectParcels({
        {"a subscription that ends after flags 1 and the name reads a false switch",
         EqualTo(*Subscription(Flag(false))),
         Wire().U64(1).Str("com.a").Done(),
         true,
         {}},
        {"subscription flag bits above the first are ignored",
         EqualTo(*Subscription(nullptr)),
         Wire().U64(~1ull).Str("com.a").Done(),
         true,
         {}},
        {"an entity whose type is missing reads type 0",
         EqualTo(*Entity(nullptr, nullptr, 0)),
         Wire().U64(0).Str("e1").Str("n").Done(),
         true,
         {}},
        {"entity flag bits above the second are ignored",
         EqualTo(*Entity(nullptr, nullptr)),
         Wire().U64(~3ull).Str("e1").Str("n").I32(3).Done(),
         true,
         {}},
        {"an entity announcing parameters with presence word 0 is refused",
         DecoderOf<EntitySetting>(),
         Wire().U64(2).Str("e1").Str("n").I32(3).I32(0).Done(),
         false,
         {"Read WantParams error", ENTITY_ERROR}},
    });
}

TEST_F(SettingTest, EveryCutOfAParcelDecodesOrFailsWithItsLines)
{
    // The switch and the type are read leniently, so an entity cut there fails only at the
    // parameters, whose presence word is then missing.
    ExpectEveryCut({
        {"entity",
         DecoderOf<EntitySetting>(),
         Marshal(*Entity(Flag(false), Params())),
         {{16, false, {"EntitySetting::ReadFromParcel: Read EntityId Error", ENTITY_ERROR}},
          {24, false, {"EntitySetting::ReadFromParcel: Read EntityName Error", ENTITY_ERROR}},
          {56, false, {"Read WantParams error", ENTITY_ERROR}}}},
        {"subscription",
         DecoderOf<SubscribeNotificationSetting>(),
         Marshal(*Subscription(Flag(true))),
         {{20, false, {"SubscribeNotificationSetting: Read BundleName Error", SUBSCRIBE_ERROR}}, {24, true, {}}}},
        {"basic setting",
         DecoderOf<SubscribeNotificationBasicSetting>(),
         Marshal(*Basic(true)),
         {{4, false, {BASIC_ERROR}}}},
    });
}

TEST_F(SettingTest, EveryFailedWriteStopsWithItsLines)
{
    ExpectEveryWriteFailure({
        {"entity",
         Entity(Flag(false), Params()),
         {{8, {"EntitySetting::Marshalling: Write Flags Error"}},
          {16, {"EntitySetting::Marshalling: Write EntityId Error"}},
          {24, {"EntitySetting::Marshalling: Write EntityName Error"}},
          {28, {"EntitySetting::Marshalling: Write Enable Error"}},
          {32, {"EntitySetting::Marshalling: Write EntityType Error"}},
          {56, {"Write extraInfo error"}}}},
        {"subscription",
         Subscription(Flag(true)),
         {{8, {"SubscribeNotificationSetting::Marshalling: Write Flags Error"}},
          {20, {"SubscribeNotificationSetting::Marshalling: Write BundleName Error"}},
          {24, {"SubscribeNotificationSetting::Marshalling: Write Enabled Error"}}}},
        {"basic setting", Basic(true), {{4, {"SubscribeNotificationBasicSetting: Marshal Failed"}}}},
    });
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
        std::shared_ptr<EntitySetting> entity;
        Json::Value before;
        Json::Value expected;
    };
    const Case cases[] = {
        {"without a switch only id, name and type are set", Entity(nullptr, nullptr), Json::Value(),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"entityType", 3}})},
        {"a switch set to false is rendered", Entity(Flag(false), nullptr), Json::Value(Json::objectValue),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"enable", false}, {"entityType", 3}})},
        {"other members stay and own keys are replaced", Entity(Flag(true), nullptr),
         Object({{"other", 1}, {"entityId", "old"}}),
         Object({{"other", 1}, {"entityId", "e1"}, {"entityName", "n"}, {"enable", true}, {"entityType", 3}})},
        {"extra parameters are not rendered and the type may be negative", Entity(nullptr, Params(), -2), Json::Value(),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"entityType", -2}})},
        {"a value that is not an object is left untouched", Entity(Flag(true), nullptr), Json::Value("text"),
         Json::Value("text")},
    };
    for (const auto& c : cases) {
        Json::Value json = c.before;
        c.entity->ToJsonValue(json);
        EXPECT_EQ(json, c.expected) << c.name << ": " << json.toStyledString();
    }
}

}  // namespace
