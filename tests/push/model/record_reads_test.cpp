#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>

#include <gtest/gtest.h>
#include <json/value.h>

#include "tests/push/model/model_test_util.h"

// The n-th non-throwing allocation of this thread fails while a countdown is armed; the others
// come from the ordinary allocator, so every new still pairs with its delete.
namespace {
thread_local int failCountdown = 0;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    if (failCountdown > 0 && --failCountdown == 0) {
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (...) {
        return nullptr;
    }
}

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

const char* const CONTENT_ERR = "RemoteNotificationContent Unmarshalling Error";
const char* const RESULT_ERR = "New remoteNotificationResult error";

template <typename T>
Reader Any()
{
    return [](Parcel& parcel) { return T::Unmarshalling(parcel) == nullptr ? -1 : 0; };
}

// Round trips of every combination are the fuzzers' work; here each part's own flag bit.
TEST(RecordReadTest, EachOptionalPartSetsItsOwnFlagBit)
{
    for (unsigned mask = 0; mask < 0x80; ++mask) {
        RemoteNotificationContent content = ContentOf(mask);
        std::bitset<RemoteNotificationContent::CONTENT_BIT_COUNT> flags(~mask);
        content.SetContentStateInfo(flags);
        EXPECT_EQ(flags.to_ulong(), mask) << "state bits of mask " << mask;
        const Bytes bytes = Marshal(content);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 8), Bytes(Wire().U64(mask))) << mask;
    }
}

TEST(RecordReadTest, ParcelsReadAsTheirBytesAndAllocationsAllow)
{
    struct Case {
        const char* name;
        Reader read;
        Bytes bytes;
        int failAt;   // which non-throwing allocation of the read fails, from 1; 0 for none
        int outcome;  // as the reader gives it
        Texts logs;
    };
    RemoteNotificationContent twoEmptyTexts;
    twoEmptyTexts.SetTitle(std::make_shared<std::string>());
    twoEmptyTexts.SetText(std::make_shared<std::string>());
    const Reader content = Any<RemoteNotificationContent>();
    const Reader request = Any<RemoteNotificationRequest>();
    const Reader location = Any<RemoteLocationRequest>();
    const Bytes info = Wire().Str("a").Str("b").I64(7);
    const Bytes requestWire = Wire().I32(30).I32(1024).I32(4096).I32(1).Raw(info);
    const Bytes extension = Wire().I32(true).I32(60).I32(1).Str("type").Str("data");
    const Bytes withAgent = Wire().U64(0x20).I32(1).Str("ab").I32(false);
    const Bytes withPoints = Wire().U64(0x40).I32(1).I64(1).I64(2).I64(3).I64(4).I64(5).I64(6);
    const Bytes voip = Wire().Str("t").Str("d").Str("c1");
    const Texts nestedLost = {"overlayIcon_ is Null", CONTENT_ERR,
                              "RemoteNotificationResult::ReadFromParcel: Read Content Error", RESULT_ERR};
    const Texts extensionLost = {"New extensionMessageInfo error", "ExtensionMessageInfo unmarshalling error"};
    const Case cases[] = {
        {"content flags 0x03 then end of data reads two empty texts", ReaderOf(twoEmptyTexts), Wire().U64(3), 0, 1, {}},
        {"content bits above the seventh are ignored", ReaderOf(ContentOf(8)), Wire().U64(~0x77ull).I64(5), 0, 1, {}},
        {"a result's failed content logs its lines first", Any<RemoteNotificationResult>(), Wire().I32(1).U64(4).I32(0),
         0, -1, nestedLost},
        {"an entity ignores flag bits above the second and reads a missing type as 0",
         ReaderOf(Entity(nullptr, nullptr, 0)), Wire().U64(~3ull).Str("e1").Str("n"), 0, 1, Texts{}},
        {"a subscription ignores flag bits above the first", ReaderOf(Subscription(nullptr)),
         Wire().U64(~1ull).Str("com.a"), 0, 1, Texts{}},
        {"a subscription ending after flags 1 and the name reads a false switch",
         ReaderOf(Subscription(std::make_shared<bool>(false))), Wire().U64(1).Str("com.a"), 0, 1, Texts{}},
        {"time points are dropped silently when not allocated", Any<MsgTimePoints>(), Wire().I64(1), 1, -1, {}},
        {"a content is dropped silently when not allocated", content, Wire().U64(0), 1, -1, {}},
        {"a nested want agent not allocated", content, withAgent, 2, -1, {"Read RemoteWantAgent Error", CONTENT_ERR}},
        {"a want agent whose holder cannot be allocated", content, withAgent, 3, -1,
         Texts{"New RemoteWantAgent Error", CONTENT_ERR}},
        {"time points whose holder cannot be allocated", content, withPoints, 3, -1,
         Texts{"New MsgTimePoints error", CONTENT_ERR}},
        {"an info not allocated", Any<RemoteNotificationInfo>(), info, 1, -1, {"New RemoteNotificationInfo error"}},
        {"a request not allocated reads nothing", request, requestWire, 1, -1, {"New remoteNotificationRequest error"}},
        {"result parameters whose holder cannot be allocated", Any<RemoteNotificationResult>(),
         Wire().I32(1).U64(0).I32(true).Raw(ParamsWire()), 2, -1, Texts{"New wantParams error", RESULT_ERR}},
        {"a VoIP info not allocated", Any<VoIPInfo>(), voip, 1, -1, {"New VoIPInfo error"}},
        {"a VoIP request not allocated", Any<VoIPRequest>(), Wire().I32(45).I32(1).Raw(voip), 1, -1,
         Texts{"New voipInfoRequest error"}},
        {"VoIP result parameters whose holder cannot be allocated", Any<VoIPResult>(),
         Wire().I32(true).Raw(ParamsWire()), 2, -1, Texts{"New wantParams error", "New voipResult error"}},
        {"a call report not allocated", Any<ReportVoIPCallParams>(), Wire().Str("c").I32(1), 1, -1,
         Texts{"New ReportVoIPCallParams error"}},
        {"a payload not allocated", Any<PushPayload>(), Wire().Str("t").Str("d"), 1, -1, {"New PushPayload error"}},
        {"an extension info not allocated", Any<PushExtensionInfo>(), extension, 1, -1, {extensionLost[0]}},
        {"a location request's inner info not allocated", location, extension, 1, -1, extensionLost},
        {"a location request not allocated", location, extension, 3, -1, {"New RemoteLocationRequest error"}},
        {"entity parameters whose holder cannot be allocated", Any<EntitySetting>(),
         Wire().U64(2).Str("e").Str("n").I32(0).Raw(ParamsWire()), 2, -1,
         Texts{"New WantParams error", "New EntitySetting error"}},
        {"a basic setting not allocated", Any<SubscribeNotificationBasicSetting>(), Wire().I32(true), 1, -1,
         Texts{"New SubscribeNotificationBasicSetting error"}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        failCountdown = c.failAt;
        const int outcome = c.read(parcel);
        const int left = failCountdown;
        failCountdown = 0;
        EXPECT_EQ(outcome, c.outcome) << c.name;
        EXPECT_EQ(left, 0) << c.name << ": fewer allocations than expected";
        watch.Expect(c.logs, c.name);
    }
}

TEST(RecordReadTest, ARecordFailsItsWriteOnAPartItsReaderWouldRefuse)
{
    auto deep = std::make_shared<AAFwk::WantParams>();
    for (int level = 1; level <= AAFwk::WantParams::MAX_DEPTH; ++level) {
        AAFwk::WantParams outer;
        outer.SetParam("n", *deep);
        *deep = outer;
    }
    RemoteNotificationContent emptyIcon;
    emptyIcon.SetOverlayIcon(std::make_shared<Media::PixelMap>());
    const std::pair<std::shared_ptr<Parcelable>, const char*> cases[] = {
        {std::make_shared<RemoteNotificationContent>(emptyIcon),
         "RemoteNotificationContent::Marshalling: Write OverlayIcon Error"},
        {std::make_shared<RemoteNotificationResult>(ContentOf(0), deep), "Write wantParams error"},
    };
    for (const auto& [record, text] : cases) {
        Parcel parcel;
        Watch watch;
        EXPECT_FALSE(record->Marshalling(parcel)) << text;
        watch.Expect({text}, text);
    }
}

TEST(RecordReadTest, ContentCopiesShareTheirPartsAndSetContentOrAReadAgainReplacesThemAll)
{
    const auto shares = [](const RemoteNotificationContent& a, const RemoteNotificationContent& b) {
        return a.GetTitle() == b.GetTitle() && a.GetText() == b.GetText() && a.GetOverlayIcon() == b.GetOverlayIcon() &&
               a.GetBadgeNumber() == b.GetBadgeNumber() && a.GetSetBadgeNumber() == b.GetSetBadgeNumber() &&
               a.GetWantAgent() == b.GetWantAgent() && a.GetMsgTimePoints() == b.GetMsgTimePoints() &&
               a.GetContentSize() == b.GetContentSize();
    };
    RemoteNotificationContent content = ContentOf(0x7F);
    content.SetContentSize(500);
    RemoteNotificationResult result;
    result.SetContent(content);
    EXPECT_TRUE(shares(result.GetContent(), content));
    EXPECT_TRUE(shares(RemoteNotificationContent(content), content));
    result.SetContent(RemoteNotificationContent());
    EXPECT_TRUE(shares(result.GetContent(), RemoteNotificationContent())) << "absent parts are set absent";
    result.SetContent(content);
    Parcel parcel = ParcelOf(Marshal(RemoteNotificationResult(ContentOf(0x01), nullptr)));
    ASSERT_TRUE(result.ReadFromParcel(parcel));
    EXPECT_TRUE(result.GetContent() == ContentOf(0x01)) << "parts absent from the parcel are read absent";
}

Json::Value Object(std::initializer_list<std::pair<const char*, Json::Value>> members)
{
    Json::Value object(Json::objectValue);
    for (const auto& [key, value] : members) {
        object[key] = value;
    }
    return object;
}

TEST(EntityJsonTest, JsonFormSetsItsKeysAndKeepsTheRest)
{
    struct Case {
        const char* name;
        EntitySetting entity;
        Json::Value before;
        Json::Value expected;
    };
    const Case cases[] = {
        {"other members stay, own keys are replaced, a false switch is rendered",
         Entity(std::make_shared<bool>(false), nullptr), Object({{"other", 1}, {"entityId", "old"}}),
         Object({{"other", 1}, {"entityId", "e1"}, {"entityName", "n"}, {"enable", false}, {"entityType", 3}})},
        {"without a switch id, name and type are set; parameters are not; the type may be negative",
         Entity(nullptr, Params(), -2), Json::Value(),
         Object({{"entityId", "e1"}, {"entityName", "n"}, {"entityType", -2}})},
        {"a value that is not an object is left untouched", Entity(std::make_shared<bool>(true), nullptr),
         Json::Value("text"), Json::Value("text")},
    };
    for (const auto& c : cases) {
        Json::Value json = c.before;
        c.entity.ToJsonValue(json);
        EXPECT_EQ(json, c.expected) << c.name << ": " << json.toStyledString();
    }
}

}  // namespace
