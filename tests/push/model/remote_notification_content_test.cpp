// Time points, want agent and notification content: layouts, lenient and strict reads,
// truncated parcels and failed writes.
#include <bitset>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "kavo/host/media/pixel_map.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_want_agent.h"
#include "tests/push/model/model_test_util.h"

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

const char* const CONTENT_ERROR = "RemoteNotificationContent Unmarshalling Error";
const char* const AGENT_ERROR = "New remoteWantAgent error";
const char* const READ_AGENT = "Read RemoteWantAgent Error";
const char* const READ_POINTS = "Read MsgTimePoints error";
const char* const POINTS_ERROR = "Read MsgTimePoints from parcel error";

std::shared_ptr<MsgTimePoints> Points(int64_t a, int64_t b, int64_t c, int64_t d, int64_t e, int64_t f)
{
    auto points = std::make_shared<MsgTimePoints>();
    points->timePoint0_ = a;
    points->timePoint1_ = b;
    points->timePoint2_ = c;
    points->timePoint3_ = d;
    points->timePoint4_ = e;
    points->timePoint5_ = f;
    return points;
}

std::shared_ptr<RemoteWantAgent> Agent(const std::string& ability, const std::string& parameters)
{
    auto agent = std::make_shared<RemoteWantAgent>();
    agent->SetAbilityName(ability);
    agent->SetParameters(parameters);
    return agent;
}

// A content holding the parts whose bits are set in `mask`.
RemoteNotificationContent ContentOf(unsigned mask)
{
    auto icon = std::make_shared<Media::PixelMap>(1, 1, Media::PixelFormat::ALPHA_8);
    icon->SetPixels({0xAB});
    RemoteNotificationContent content;
    content.SetTitle((mask & 0x01) ? std::make_shared<std::string>("T") : nullptr);
    content.SetText((mask & 0x02) ? std::make_shared<std::string>("xy") : nullptr);
    content.SetOverlayIcon((mask & 0x04) ? icon : nullptr);
    content.SetBadgeNumber((mask & 0x08) ? std::make_shared<long>(5) : nullptr);
    content.SetSetBadgeNumber((mask & 0x10) ? std::make_shared<long>(-1) : nullptr);
    content.SetWantAgent((mask & 0x20) ? Agent("ab", "p=1") : nullptr);
    content.SetMsgTimePoints((mask & 0x40) ? Points(1, 2, 3, 4, 5, 6) : nullptr);
    return content;
}

Bytes PointsWire()
{
    return Wire().I64(1).I64(2).I64(3).I64(4).I64(5).I64(6).Done();
}

// Offsets: flags 0-8, title 8-16, text 16-24, icon 24-48, badges 48-64, agent 64-88, points 88-140.
Bytes FullContentWire()
{
    return Wire()
        .U64(0x7F)
        .Str("T")
        .Str("xy")
        .I32(1)
        .I32(1)
        .I32(1)
        .I32(6)
        .I32(1)
        .Raw({0xAB})
        .I64(5)
        .I64(-1)
        .I32(1)
        .Str("ab")
        .Bool(true)
        .Str("p=1")
        .I32(1)
        .Append(PointsWire())
        .Done();
}

class RemoteNotificationContentTest : public ::testing::Test {};

TEST_F(RemoteNotificationContentTest, EveryCombinationOfPartsRoundTripsWithoutTheContentSize)
{
    for (unsigned mask = 0; mask < 0x80; ++mask) {
        RemoteNotificationContent content = ContentOf(mask);
        content.SetContentSize(1234);
        const Bytes bytes = Marshal(content);
        uint64_t flags = 0;
        std::memcpy(&flags, bytes.data(), sizeof(flags));
        EXPECT_EQ(flags, mask);

        Parcel parcel = ParcelOf(bytes);
        Watch watch;
        sptr<RemoteNotificationContent> read = RemoteNotificationContent::Unmarshalling(parcel);
        ASSERT_NE(read, nullptr) << "mask " << mask;
        watch.Expect({});
        EXPECT_EQ(read->GetContentSize(), 0);
        content.SetContentSize(0);
        EXPECT_EQ(*read, content) << "mask " << mask;
        EXPECT_EQ(Marshal(*read), bytes) << "mask " << mask;
    }
}

TEST_F(RemoteNotificationContentTest, LayoutsFollowTheWireFormat)
{
    const int64_t min = std::numeric_limits<int64_t>::min();
    const int64_t max = std::numeric_limits<int64_t>::max();
    const auto extremes = Points(min, max, min, max, -1, 0);
    const RemoteNotificationContent onlyPoints = ContentOf(0x40);
    ExpectLayouts({
        {"a content without parts is one zero flags word", std::make_shared<RemoteNotificationContent>(),
         Wire().U64(0).Done(), EqualTo(RemoteNotificationContent())},
        {"time points alone give flags 0x40, a presence word and six values",
         std::make_shared<RemoteNotificationContent>(onlyPoints), Wire().U64(0x40).I32(1).Append(PointsWire()).Done(),
         EqualTo(onlyPoints)},
        {"all seven parts give flags 0x7F and every part in bit order",
         std::make_shared<RemoteNotificationContent>(ContentOf(0x7F)), FullContentWire(), EqualTo(ContentOf(0x7F))},
        {"time points at the extremes are six plain 64-bit words", extremes,
         Wire().I64(min).I64(max).I64(min).I64(max).I64(-1).I64(0).Done(), EqualTo(*extremes)},
        {"a want agent without parameters writes its name and false", Agent("Main", ""),
         Wire().Str("Main").Bool(false).Done(), EqualTo(*Agent("Main", ""))},
        {"a want agent with parameters writes its name, true and the parameters", Agent("Main", "a=1"),
         Wire().Str("Main").Bool(true).Str("a=1").Done(), EqualTo(*Agent("Main", "a=1"))},
    });
}

TEST_F(RemoteNotificationContentTest, ParcelsFromOtherProcessesReadAsTheirFlagsSay)
{
    RemoteNotificationContent twoEmptyTexts;
    twoEmptyTexts.SetTitle(std::make_shared<std::string>());
    twoEmptyTexts.SetText(std::make_shared<std::string>());
    const Decoder content = DecoderOf<RemoteNotificationContent>();
    const Decoder agent = DecoderOf<RemoteWantAgent>();
    ExpectParcels({
        {"flags 0x03 then end of data reads two empty strings", EqualTo(twoEmptyTexts), Wire().U64(3).Done(), true, {}},
        {"an empty parcel reads as a content without parts", EqualTo(ContentOf(0)), {}, true, {}},
        {"flags 0x80 alone reads as a content without parts", EqualTo(ContentOf(0)), Wire().U64(0x80).Done(), true, {}},
        {"bits above the seventh are ignored", EqualTo(ContentOf(0x08)), Wire().U64(~0x77ull).I64(5).Done(), true, {}},
        {"an icon announced with presence word 0 is refused",
         content,
         Wire().U64(0x04).I32(0).Done(),
         false,
         {"overlayIcon_ is Null", CONTENT_ERROR}},
        {"an icon whose byte count does not match its size is refused",
         content,
         Wire().U64(0x04).I32(1).I32(1).I32(1).I32(6).I32(2).Raw({1, 2}).Done(),
         false,
         {"overlayIcon_ is Null", CONTENT_ERROR}},
        {"a want agent announced with presence word 0 is refused",
         content,
         Wire().U64(0x20).I32(0).Done(),
         false,
         {READ_AGENT, CONTENT_ERROR}},
        {"flags 0x40 then end of data logs twice and reports once",
         content,
         Wire().U64(0x40).Done(),
         false,
         {READ_POINTS, CONTENT_ERROR}},
        {"a presence word of 0 yields no time points and no line",
         [](Parcel& p) { return p.ReadStrongParcelable<MsgTimePoints>() != nullptr; },
         Wire().I32(0).Done(),
         false,
         {}},
        {"any non-zero valid word announces parameters",
         EqualTo(*Agent("A", "q")),
         Wire().Str("A").I32(7).Str("q").Done(),
         true,
         {}},
        {"announced parameters that are missing are refused",
         agent,
         Wire().Str("A").Bool(true).Done(),
         false,
         {"RemoteWantAgent::ReadFromParcel: Read Parameters Error", AGENT_ERROR}},
        {"a negative name length is refused",
         agent,
         Wire().I32(-1).I32(0).Done(),
         false,
         {"RemoteWantAgent::ReadFromParcel: Read AbilityName Error", AGENT_ERROR}},
    });
}

TEST_F(RemoteNotificationContentTest, EveryCutOfAParcelDecodesOrFailsWithItsLines)
{
    const Texts nameLost = {"RemoteWantAgent::ReadFromParcel: Read AbilityName Error", AGENT_ERROR};
    const Texts validLost = {"RemoteWantAgent::ReadFromParcel: Read Valid Error", AGENT_ERROR};
    const Texts parametersLost = {"RemoteWantAgent::ReadFromParcel: Read Parameters Error", AGENT_ERROR};
    const Texts iconLost = {"overlayIcon_ is Null", CONTENT_ERROR};
    const Texts agentLost = {READ_AGENT, CONTENT_ERROR};
    // A value-form read that comes up short does not move, so the next part is read from the
    // bytes of the one before: an agent's presence word may land on a badge number.
    const Texts agentNameLost = {nameLost[0], AGENT_ERROR, READ_AGENT, CONTENT_ERROR};
    ExpectEveryCut({
        {"time points", DecoderOf<MsgTimePoints>(), PointsWire(), {{48, false, {POINTS_ERROR}}}},
        {"want agent",
         DecoderOf<RemoteWantAgent>(),
         Marshal(*Agent("ab", "p=1")),
         {{8, false, nameLost}, {12, false, validLost}, {20, false, parametersLost}}},
        {"content with every part",
         DecoderOf<RemoteNotificationContent>(),
         FullContentWire(),
         {{8, true, {}},
          {48, false, iconLost},
          {52, false, agentLost},
          {56, false, agentNameLost},
          {60, false, agentLost},
          {64, false, agentNameLost},
          {68, false, agentLost},
          {76, false, agentNameLost},
          {80, false, {validLost[0], AGENT_ERROR, READ_AGENT, CONTENT_ERROR}},
          {88, false, {parametersLost[0], AGENT_ERROR, READ_AGENT, CONTENT_ERROR}},
          {92, false, {READ_POINTS, CONTENT_ERROR}},
          {140, false, {POINTS_ERROR, READ_POINTS, CONTENT_ERROR}}}},
    });
}

TEST_F(RemoteNotificationContentTest, EveryFailedWriteStopsWithItsLines)
{
    const char* const agentWrite = "Write wantAgent error";
    const char* const nameWrite = "RemoteWantAgent::Marshallin: Write AbilityName Error";
    const char* const validWrite = "RemoteWantAgent::Marshallin: Write Valid Error";
    ExpectEveryWriteFailure({
        {"time points log nothing of their own", Points(1, 2, 3, 4, 5, 6), {{48, {}}}},
        {"want agent", Agent("ab", "p=1"), {{8, {nameWrite}}, {12, {validWrite}}, {20, {"Write parameters error"}}}},
        {"content with every part",
         std::make_shared<RemoteNotificationContent>(ContentOf(0x7F)),
         {{8, {"RemoteNotificationContent::Marshalling: Write Flags Error"}},
          {16, {"RemoteNotificationContent::Marshalling: Write Title Error"}},
          {24, {"RemoteNotificationContent::Marshalling: Write Text Error"}},
          {48, {"RemoteNotificationContent::Marshalling: Write OverlayIcon Error"}},
          {56, {"RemoteNotificationContent::Marshalling: Write BadgeNumber Error"}},
          {64, {"RemoteNotificationContent::Marshalling: Write SetBadgeNumber Error"}},
          {68, {agentWrite}},
          {76, {nameWrite, agentWrite}},
          {80, {validWrite, agentWrite}},
          {88, {"Write parameters error", agentWrite}},
          {140, {"Write msg time points info error"}}}},
    });
}

TEST_F(RemoteNotificationContentTest, StateInfoOverwritesEveryBitFromTheParts)
{
    struct Case {
        const char* name;
        unsigned mask;
        unsigned before;
    };
    const Case cases[] = {
        {"stale bits are cleared", 0x01, 0x7F},
        {"every part sets its bit", 0x7F, 0},
        {"alternate parts", 0x55, 0x2A},
    };
    for (const auto& c : cases) {
        std::bitset<7> flags(c.before);
        ContentOf(c.mask).SetContentStateInfo(flags);
        EXPECT_EQ(flags.to_ulong(), c.mask) << c.name;
    }
}

}  // namespace
