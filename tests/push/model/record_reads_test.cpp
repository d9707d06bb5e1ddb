// Records as other writers hand them over: every combination of optional parts, lenient reads,
// ignored flag bits and nested failures; and the JSON form of an entity setting.
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <json/value.h>

#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/model/voip_result.h"
#include "tests/push/model/model_test_util.h"

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

const char* const CONTENT_ERR = "RemoteNotificationContent Unmarshalling Error";

class RecordReadTest : public ::testing::Test {};

TEST_F(RecordReadTest, EveryCombinationOfOptionalPartsRoundTripsWithoutTheContentSize)
{
    for (unsigned mask = 0; mask < 0x100; ++mask) {
        RemoteNotificationContent content = ContentOf(mask & 0x7F);
        std::bitset<RemoteNotificationContent::CONTENT_BIT_COUNT> flags(~mask);
        content.SetContentStateInfo(flags);
        EXPECT_EQ(flags.to_ulong(), mask & 0x7F) << "stale bits stay, mask " << mask;
        content.SetContentSize(1234);
        const RemoteNotificationResult result(content, (mask & 0x80) ? Params() : nullptr);
        const Bytes bytes = Marshal(result);
        EXPECT_EQ(Bytes(bytes.begin() + 4, bytes.begin() + 12), Bytes(Wire().U64(mask & 0x7F))) << mask;
        Parcel parcel = ParcelOf(bytes);
        Watch watch;
        sptr<RemoteNotificationResult> read = RemoteNotificationResult::Unmarshalling(parcel);
        ASSERT_NE(read, nullptr) << mask;
        watch.Expect({});
        EXPECT_EQ(read->GetContent().GetContentSize(), 0) << mask;
        content.SetContentSize(0);
        EXPECT_EQ(*read, RemoteNotificationResult(content, result.GetParameters())) << mask;
        EXPECT_EQ(Marshal(*read), bytes) << mask;
    }
}

TEST_F(RecordReadTest, ParcelsFromOtherWritersReadAsTheirFlagsSay)
{
    struct Case {
        const char* name;
        Reader read;
        Bytes bytes;
        int outcome;  // as Reader gives it
        Texts logs;
    };
    RemoteNotificationContent twoEmptyTexts;
    twoEmptyTexts.SetTitle(std::make_shared<std::string>());
    twoEmptyTexts.SetText(std::make_shared<std::string>());
    const Reader content = ReaderOf(RemoteNotificationContent());
    const Case cases[] = {
        {"content flags 0x03 then end of data reads two empty strings", ReaderOf(twoEmptyTexts), Wire().U64(3), 1, {}},
        {"content flags 0x40 then end of data logs twice and reports once",
         content,
         Wire().U64(0x40),
         -1,
         {"Read MsgTimePoints error", CONTENT_ERR}},
        {"content bits above the seventh are ignored", ReaderOf(ContentOf(0x08)), Wire().U64(~0x77ull).I64(5), 1, {}},
        {"an icon announced with presence word 0 is refused",
         content,
         Wire().U64(0x04).I32(0),
         -1,
         {"overlayIcon_ is Null", CONTENT_ERR}},
        {"a result whose content fails logs the content's lines first",
         ReaderOf(RemoteNotificationResult()),
         Wire().I32(1).U64(0x04).I32(0),
         -1,
         {"overlayIcon_ is Null", CONTENT_ERR, "RemoteNotificationResult::ReadFromParcel: Read Content Error",
          "New remoteNotificationResult error"}},
        {"any non-zero flag announces parameters",
         ReaderOf(VoIPResult(Params())),
         Wire().I32(-5).Raw(ParamsWire()),
         1,
         {}},
        {"an entity ignores flag bits above the second and reads a missing type as 0",
         ReaderOf(Entity(nullptr, nullptr, 0)),
         Wire().U64(~3ull).Str("e1").Str("n"),
         1,
         {}},
        {"a subscription ignores flag bits above the first",
         ReaderOf(Subscription(nullptr)),
         Wire().U64(~1ull).Str("com.a"),
         1,
         {}},
        {"a subscription ending after flags 1 and the name reads a false switch",
         ReaderOf(Subscription(Flag(false))),
         Wire().U64(1).Str("com.a"),
         1,
         {}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        EXPECT_EQ(c.read(parcel), c.outcome) << c.name;
        watch.Expect(c.logs, c.name);
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

TEST_F(RecordReadTest, EntityJsonFormSetsItsKeysAndKeepsTheRest)
{
    struct Case {
        const char* name;
        EntitySetting entity;
        Json::Value before;
        Json::Value expected;
    };
    const Case cases[] = {
        {"without a switch only id, name and type are set", Entity(nullptr, nullptr), Json::Value(),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"entityType", 3}})},
        {"other members stay, own keys are replaced, a false switch is rendered", Entity(Flag(false), nullptr),
         Object({{"other", 1}, {"entityId", "old"}}),
         Object({{"other", 1}, {"entityId", "e1"}, {"entityName", "n"}, {"enable", false}, {"entityType", 3}})},
        {"extra parameters are not rendered and the type may be negative", Entity(nullptr, Params(), -2), Json::Value(),
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
