// Time points, want agent and notification content: layouts, lenient and strict reads,
// truncated parcels and failed writes.
#include <bitset>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

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

MsgTimePoints Points(int64_t first, int64_t step)
{
    MsgTimePoints points;
    points.timePoint0_ = first;
    points.timePoint1_ = first + step;
    points.timePoint2_ = first + 2 * step;
    points.timePoint3_ = first + 3 * step;
    points.timePoint4_ = first + 4 * step;
    points.timePoint5_ = first + 5 * step;
    return points;
}

RemoteWantAgent Agent(const std::string& ability, const std::string& parameters)
{
    RemoteWantAgent agent;
    agent.SetAbilityName(ability);
    agent.SetParameters(parameters);
    return agent;
}

std::shared_ptr<Media::PixelMap> Icon()
{
    auto icon = std::make_shared<Media::PixelMap>(1, 1, Media::PixelFormat::ALPHA_8);
    icon->SetPixels({0xAB});
    return icon;
}

// A content holding the parts whose bits are set in `mask`.
RemoteNotificationContent ContentOf(unsigned mask)
{
    RemoteNotificationContent content;
    if (mask & 0x01) content.SetTitle(std::make_shared<std::string>("T"));
    if (mask & 0x02) content.SetText(std::make_shared<std::string>("xy"));
    if (mask & 0x04) content.SetOverlayIcon(Icon());
    if (mask & 0x08) content.SetBadgeNumber(std::make_shared<long>(5));
    if (mask & 0x10) content.SetSetBadgeNumber(std::make_shared<long>(-1));
    if (mask & 0x20) content.SetWantAgent(std::make_shared<RemoteWantAgent>(Agent("ab", "p=1")));
    if (mask & 0x40) content.SetMsgTimePoints(std::make_shared<MsgTimePoints>(Points(1, 1)));
    return content;
}

Bytes IconWire()
{
    return Wire().I32(1).I32(1).I32(6).I32(1).Raw({0xAB}).Done();
}

Bytes PointsWire(int64_t first, int64_t step)
{
    Wire wire;
    for (int i = 0; i < 6; ++i) {
        wire.I64(first + i * step);
    }
    return wire.Done();
}

// Offsets: flags 0-8, title 8-16, text 16-24, icon 24-48, badges 48-64, agent 64-88, points 88-140.
Bytes FullContentWire()
{
    return Wire()
        .U64(0x7F)
        .Str("T")
        .Str("xy")
        .I32(1)
        .Append(IconWire())
        .I64(5)
        .I64(-1)
        .I32(1)
        .Str("ab")
        .Bool(true)
        .Str("p=1")
        .I32(1)
        .Append(PointsWire(1, 1))
        .Done();
}

class RemoteNotificationContentTest : public ::testing::Test {};

TEST_F(RemoteNotificationContentTest, EveryCombinationOfPartsRoundTripsWithoutTheContentSize)
{
    for (unsigned mask = 0; mask < 0x80; ++mask) {
        RemoteNotificationContent content = ContentOf(mask);
        content.SetContentSize(1234);
        Bytes bytes = Marshal(content);
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
        EXPECT_EQ(parcel.GetReadableBytes(), 0u);
    }
}

TEST_F(RemoteNotificationContentTest, LayoutsFollowTheWireFormat)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        Bytes expected;
    };
    RemoteNotificationContent onlyPoints;
    onlyPoints.SetMsgTimePoints(std::make_shared<MsgTimePoints>(Points(10, 10)));
    const int64_t min = std::numeric_limits<int64_t>::min();
    const int64_t max = std::numeric_limits<int64_t>::max();
    auto extremes = std::make_shared<MsgTimePoints>();
    extremes->timePoint0_ = min;
    extremes->timePoint1_ = max;
    extremes->timePoint2_ = min;
    extremes->timePoint3_ = max;
    extremes->timePoint4_ = -1;
    extremes->timePoint5_ = 0;
    const Case cases[] = {
        {"a content without parts is one zero flags word", std::make_shared<RemoteNotificationContent>(),
         Wire().U64(0).Done()},
        {"time points alone give flags 0x40, a presence word and six values",
         std::make_shared<RemoteNotificationContent>(onlyPoints),
         Wire().U64(0x40).I32(1).Append(PointsWire(10, 10)).Done()},
        {"all seven parts give flags 0x7F and every part in bit order",
         std::make_shared<RemoteNotificationContent>(ContentOf(0x7F)), FullContentWire()},
        {"time points at the extremes are six plain 64-bit words", extremes,
         Wire().I64(min).I64(max).I64(min).I64(max).I64(-1).I64(0).Done()},
        {"a want agent without parameters writes its name and false",
         std::make_shared<RemoteWantAgent>(Agent("Main", "")), Wire().Str("Main").Bool(false).Done()},
        {"a want agent with parameters writes its name, true and the parameters",
         std::make_shared<RemoteWantAgent>(Agent("Main", "a=1")), Wire().Str("Main").Bool(true).Str("a=1").Done()},
    };
    for (const auto& c : cases) {
        Watch watch;
        EXPECT_EQ(Marshal(*c.record), c.expected) << c.name;
        watch.Expect({}, c.name);
    }
}

TEST_F(RemoteNotificationContentTest, ParcelsFromOtherProcessesReadAsTheirFlagsSay)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        Outcome outcome;
    };
    RemoteNotificationContent twoEmptyTexts;
    twoEmptyTexts.SetTitle(std::make_shared<std::string>());
    twoEmptyTexts.SetText(std::make_shared<std::string>());
    const std::string contentError = "RemoteNotificationContent Unmarshalling Error";
    const Case cases[] = {
        {"flags 0x03 then end of data reads two empty strings", EqualTo(twoEmptyTexts), Wire().U64(0x03).Done(),
         {true, {}}},
        {"an empty parcel reads as a content without parts", EqualTo(RemoteNotificationContent()), {}, {true, {}}},
        {"flags 0x80 alone reads as a content without parts", EqualTo(RemoteNotificationContent()),
         Wire().U64(0x80).Done(), {true, {}}},
        {"bits above the seventh are ignored", EqualTo(ContentOf(0x08)), Wire().U64(~0x77ull).I64(5).Done(),
         {true, {}}},
        {"an icon announced with presence word 0 is refused", DecoderOf<RemoteNotificationContent>(),
         Wire().U64(0x04).I32(0).Done(), {false, {"overlayIcon_ is Null", contentError}}},
        {"an icon whose byte count does not match its size is refused", DecoderOf<RemoteNotificationContent>(),
         Wire().U64(0x04).I32(1).I32(1).I32(1).I32(6).I32(2).Raw({1, 2}).Done(),
         {false, {"overlayIcon_ is Null", contentError}}},
        {"a want agent announced with presence word 0 is refused", DecoderOf<RemoteNotificationContent>(),
         Wire().U64(0x20).I32(0).Done(), {false, {"Read RemoteWantAgent Error", contentError}}},
        {"flags 0x40 then end of data logs twice and reports once", DecoderOf<RemoteNotificationContent>(),
         Wire().U64(0x40).Done(), {false, {"Read MsgTimePoints error", contentError}}},
        {"time points cut short fail inside and outside", DecoderOf<RemoteNotificationContent>(),
         Wire().U64(0x40).I32(1).I64(1).Done(),
         {false, {"Read MsgTimePoints from parcel error", "Read MsgTimePoints error", contentError}}},
        {"five time points are refused with one unreported line", DecoderOf<MsgTimePoints>(),
         Wire().I64(1).I64(2).I64(3).I64(4).I64(5).Done(), {false, {"Read MsgTimePoints from parcel error"}}},
        {"a presence word of 0 yields no time points and no line",
         [](Parcel& p) { return p.ReadStrongParcelable<MsgTimePoints>() != nullptr; }, Wire().I32(0).Done(),
         {false, {}}},
        {"any non-zero valid word announces parameters", EqualTo(Agent("A", "q")),
         Wire().Str("A").I32(7).Str("q").Done(), {true, {}}},
        {"announced parameters that are missing are refused", DecoderOf<RemoteWantAgent>(),
         Wire().Str("A").Bool(true).Done(),
         {false, {"RemoteWantAgent::ReadFromParcel: Read Parameters Error", "New remoteWantAgent error"}}},
        {"a negative name length is refused", DecoderOf<RemoteWantAgent>(), Wire().I32(-1).I32(0).Done(),
         {false, {"RemoteWantAgent::ReadFromParcel: Read AbilityName Error", "New remoteWantAgent error"}}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        EXPECT_EQ(c.decode(parcel), c.outcome.decodes) << c.name;
        watch.Expect(c.outcome.logs, c.name);
    }
}

TEST_F(RemoteNotificationContentTest, EveryCutOfAParcelDecodesOrFailsWithItsLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        std::vector<Region> regions;
    };
    const std::string contentError = "RemoteNotificationContent Unmarshalling Error";
    const std::string agentError = "Read RemoteWantAgent Error";
    const Texts iconLost = {"overlayIcon_ is Null", contentError};
    const Texts agentLost = {agentError, contentError};
    // A value-form read that comes up short does not move, so the next part is read from the
    // bytes of the one before: an agent's presence word may land on a badge number.
    const Texts agentNameLost = {"RemoteWantAgent::ReadFromParcel: Read AbilityName Error", "New remoteWantAgent error",
                                 agentError, contentError};
    const Case cases[] = {
        {"time points", DecoderOf<MsgTimePoints>(), PointsWire(1, 1),
         {{48, {false, {"Read MsgTimePoints from parcel error"}}}}},
        {"want agent", DecoderOf<RemoteWantAgent>(), Marshal(Agent("ab", "p=1")),
         {{8, {false, {"RemoteWantAgent::ReadFromParcel: Read AbilityName Error", "New remoteWantAgent error"}}},
          {12, {false, {"RemoteWantAgent::ReadFromParcel: Read Valid Error", "New remoteWantAgent error"}}},
          {20, {false, {"RemoteWantAgent::ReadFromParcel: Read Parameters Error", "New remoteWantAgent error"}}}}},
        {"content with every part", DecoderOf<RemoteNotificationContent>(), FullContentWire(),
         {{8, {true, {}}},
          {48, {false, iconLost}},
          {52, {false, agentLost}},
          {56, {false, agentNameLost}},
          {60, {false, agentLost}},
          {64, {false, agentNameLost}},
          {68, {false, agentLost}},
          {76, {false, agentNameLost}},
          {80,
           {false,
            {"RemoteWantAgent::ReadFromParcel: Read Valid Error", "New remoteWantAgent error", agentError,
             contentError}}},
          {88,
           {false,
            {"RemoteWantAgent::ReadFromParcel: Read Parameters Error", "New remoteWantAgent error", agentError,
             contentError}}},
          {92, {false, {"Read MsgTimePoints error", contentError}}},
          {140,
           {false, {"Read MsgTimePoints from parcel error", "Read MsgTimePoints error", contentError}}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryCut(c.decode, c.bytes, c.regions, c.name);
    }
}

TEST_F(RemoteNotificationContentTest, EveryFailedWriteStopsWithItsLines)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        std::vector<WriteRegion> regions;
    };
    const std::string agentError = "Write wantAgent error";
    const Case cases[] = {
        {"time points log nothing of their own", std::make_shared<MsgTimePoints>(Points(1, 1)), {{48, {}}}},
        {"want agent", std::make_shared<RemoteWantAgent>(Agent("ab", "p=1")),
         {{8, {"RemoteWantAgent::Marshallin: Write AbilityName Error"}},
          {12, {"RemoteWantAgent::Marshallin: Write Valid Error"}},
          {20, {"Write parameters error"}}}},
        {"content with every part", std::make_shared<RemoteNotificationContent>(ContentOf(0x7F)),
         {{8, {"RemoteNotificationContent::Marshalling: Write Flags Error"}},
          {16, {"RemoteNotificationContent::Marshalling: Write Title Error"}},
          {24, {"RemoteNotificationContent::Marshalling: Write Text Error"}},
          {48, {"RemoteNotificationContent::Marshalling: Write OverlayIcon Error"}},
          {56, {"RemoteNotificationContent::Marshalling: Write BadgeNumber Error"}},
          {64, {"RemoteNotificationContent::Marshalling: Write SetBadgeNumber Error"}},
          {68, {agentError}},
          {76, {"RemoteWantAgent::Marshallin: Write AbilityName Error", agentError}},
          {80, {"RemoteWantAgent::Marshallin: Write Valid Error", agentError}},
          {88, {"Write parameters error", agentError}},
          {140, {"Write msg time points info error"}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryWriteFailure(*c.record, c.regions, c.name);
    }
}

TEST_F(RemoteNotificationContentTest, StateInfoOverwritesEveryBitFromTheParts)
{
    struct Case {
        const char* name;
        unsigned mask;
        std::bitset<7> before;
    };
    const Case cases[] = {
        {"stale bits are cleared", 0x01, std::bitset<7>(0x7F)},
        {"every part sets its bit", 0x7F, std::bitset<7>(0)},
        {"alternate parts", 0x55, std::bitset<7>(0x2A)},
    };
    for (const auto& c : cases) {
        std::bitset<7> flags = c.before;
        ContentOf(c.mask).SetContentStateInfo(flags);
        EXPECT_EQ(flags.to_ulong(), c.mask) << c.name;
    }
}

}  // namespace
