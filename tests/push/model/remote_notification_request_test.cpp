// Notification info, request and result: layouts, the request's cascade of messages, truncated
// parcels and failed writes.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kavo/host/want/want_params.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_info.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "tests/push/model/model_test_util.h"

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

const char* const SURVIVAL = "RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error";
const char* const CONTENT_SIZE = "RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error";
const char* const NEW_INFO = "New RemoteNotificationInfo Error";
const char* const RESULT_ERROR = "New remoteNotificationResult error";

std::shared_ptr<AAFwk::WantParams> Params()
{
    auto params = std::make_shared<AAFwk::WantParams>();
    params->SetParam("k", AAFwk::WantParams::Value(int32_t{7}));
    return params;
}

Bytes ParamsWire()
{
    return Wire().I32(1).Str("k").I32(3).I32(7).Done();
}

RemoteNotificationContent TitleOnly()
{
    RemoteNotificationContent content;
    content.SetTitle(std::make_shared<std::string>("T"));
    return content;
}

RemoteNotificationRequest Request()
{
    return RemoteNotificationRequest(30, 1024, 4096, RemoteNotificationInfo("a", "b", 7));
}

// Offsets: content 0-20, flag 20-24, parameters 24-48.
Bytes ResultWire()
{
    return Wire().I32(1).U64(1).Str("T").Bool(true).I32(1).Append(ParamsWire()).Done();
}

class RemoteNotificationRequestTest : public ::testing::Test {};

TEST_F(RemoteNotificationRequestTest, RecordsRoundTripWithEveryOptionalPart)
{
    for (unsigned mask = 0; mask < 0x100; ++mask) {
        RemoteNotificationContent content;
        content.SetTitle((mask & 0x01) ? std::make_shared<std::string>("title") : nullptr);
        content.SetText((mask & 0x02) ? std::make_shared<std::string>("") : nullptr);
        content.SetOverlayIcon((mask & 0x04) ? std::make_shared<Media::PixelMap>(2, 1, Media::PixelFormat::RGB_565)
                                             : nullptr);
        content.SetBadgeNumber((mask & 0x08) ? std::make_shared<long>(0) : nullptr);
        content.SetSetBadgeNumber((mask & 0x10) ? std::make_shared<long>(99) : nullptr);
        content.SetWantAgent((mask & 0x20) ? std::make_shared<RemoteWantAgent>() : nullptr);
        content.SetMsgTimePoints((mask & 0x40) ? std::make_shared<MsgTimePoints>() : nullptr);
        content.SetContentSize(500);
        RemoteNotificationResult result(content, (mask & 0x80) ? Params() : nullptr);

        Bytes bytes = Marshal(result);
        Parcel parcel = ParcelOf(bytes);
        Watch watch;
        sptr<RemoteNotificationResult> read = RemoteNotificationResult::Unmarshalling(parcel);
        ASSERT_NE(read, nullptr) << "mask " << mask;
        watch.Expect({});
        EXPECT_EQ(read->GetContent().GetContentSize(), 0) << "mask " << mask;
        EXPECT_EQ(read->GetParameters() != nullptr, (mask & 0x80) != 0) << "mask " << mask;
        content.SetContentSize(0);
        result.SetContent(content);
        EXPECT_EQ(*read, result) << "mask " << mask;
        EXPECT_EQ(Marshal(*read), bytes) << "mask " << mask;
    }
}

TEST_F(RemoteNotificationRequestTest, LayoutsFollowTheWireFormat)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        Bytes expected;
        Decoder readBack;
    };
    const RemoteNotificationInfo info("a", "b", 7);
    const RemoteNotificationResult bare;
    const RemoteNotificationResult full(TitleOnly(), Params());
    const Case cases[] = {
        {"a request is three words, a presence word, two strings and a 64-bit id",
         std::make_shared<RemoteNotificationRequest>(Request()),
         Wire().I32(30).I32(1024).I32(4096).I32(1).Str("a").Str("b").I64(7).Done(), EqualTo(Request())},
        {"an info is two strings and a 64-bit id", std::make_shared<RemoteNotificationInfo>(info),
         Wire().Str("a").Str("b").I64(7).Done(), EqualTo(info)},
        {"a result without parameters is its content, then false",
         std::make_shared<RemoteNotificationResult>(bare), Wire().I32(1).U64(0).Bool(false).Done(), EqualTo(bare)},
        {"a result with parameters adds true and the parameters behind a presence word",
         std::make_shared<RemoteNotificationResult>(full), ResultWire(), EqualTo(full)},
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

TEST_F(RemoteNotificationRequestTest, MalformedParcelsAreRefusedWithTheirLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        Outcome outcome;
    };
    const Decoder request = DecoderOf<RemoteNotificationRequest>();
    const Decoder result = DecoderOf<RemoteNotificationResult>();
    const Case cases[] = {
        {"an empty request parcel runs the whole cascade", request, {}, {false, {SURVIVAL, SURVIVAL, CONTENT_SIZE,
                                                                                 NEW_INFO}}},
        {"a request cut after its first integer logs three lines", request, Wire().I32(30).Done(),
         {false, {SURVIVAL, CONTENT_SIZE, NEW_INFO}}},
        {"a request whose info presence word is 0 is refused", request, Wire().I32(1).I32(2).I32(3).I32(0).Done(),
         {false, {NEW_INFO}}},
        {"a request whose info type is cut is refused", request, Wire().I32(1).I32(2).I32(3).I32(1).I32(9).Done(),
         {false, {"RemoteNotificationInfo::Unmarshalling: Read type Error", NEW_INFO}}},
        {"a result whose content presence word is 0 is refused", result, Wire().I32(0).Bool(false).Done(),
         {false, {"RemoteNotificationResult::ReadFromParcel: Read Content Error", RESULT_ERROR}}},
        {"a result announcing parameters with presence word 0 is refused", result,
         Wire().I32(1).U64(0).Bool(true).I32(0).Done(), {false, {"Read wantParams error", RESULT_ERROR}}},
        {"a result whose parameters hold an unknown tag is refused", result,
         Wire().I32(1).U64(0).Bool(true).I32(1).I32(1).Str("k").I32(99).I32(7).Done(),
         {false, {"Read wantParams error", RESULT_ERROR}}},
        {"a result whose failed content is nested logs the content's line first", result,
         Wire().I32(1).U64(0x04).I32(0).Done(),
         {false, {"overlayIcon_ is Null", "RemoteNotificationContent Unmarshalling Error",
                  "RemoteNotificationResult::ReadFromParcel: Read Content Error", RESULT_ERROR}}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        EXPECT_EQ(c.decode(parcel), c.outcome.decodes) << c.name;
        watch.Expect(c.outcome.logs, c.name);
    }
}

TEST_F(RemoteNotificationRequestTest, EveryCutOfAParcelFailsWithItsLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        std::vector<Region> regions;
    };
    const Texts validLost = {"RemoteNotificationResult::ReadFromParcel: Read Valid from Parcel Error", RESULT_ERROR};
    const Texts paramsLost = {"Read wantParams error", RESULT_ERROR};
    const Case cases[] = {
        {"info", DecoderOf<RemoteNotificationInfo>(), Marshal(RemoteNotificationInfo("a", "b", 7)),
         {{8, {false, {"RemoteNotificationInfo::Unmarshalling: Read type Error"}}},
          {16, {false, {"RemoteNotificationInfo::Unmarshalling: Read data Error"}}},
          {24, {false, {"RemoteNotificationInfo::Unmarshalling: Read id Error"}}}}},
        {"request", DecoderOf<RemoteNotificationRequest>(), Marshal(Request()),
         {{4, {false, {SURVIVAL, SURVIVAL, CONTENT_SIZE, NEW_INFO}}},
          {8, {false, {SURVIVAL, CONTENT_SIZE, NEW_INFO}}},
          {12, {false, {CONTENT_SIZE, NEW_INFO}}},
          {16, {false, {NEW_INFO}}},
          {24, {false, {"RemoteNotificationInfo::Unmarshalling: Read type Error", NEW_INFO}}},
          {32, {false, {"RemoteNotificationInfo::Unmarshalling: Read data Error", NEW_INFO}}},
          {40, {false, {"RemoteNotificationInfo::Unmarshalling: Read id Error", NEW_INFO}}}}},
        // The content reads its flags and title leniently: a short one stays where it was, and
        // the flag after it is read from the content's own bytes.
        {"result", DecoderOf<RemoteNotificationResult>(), ResultWire(),
         {{4, {false, {"RemoteNotificationResult::ReadFromParcel: Read Content Error", RESULT_ERROR}}},
          {8, {false, validLost}},
          {12, {false, paramsLost}},
          {16, {false, validLost}},
          {20, {false, paramsLost}},
          {24, {false, validLost}},
          {48, {false, paramsLost}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryCut(c.decode, c.bytes, c.regions, c.name);
    }
}

TEST_F(RemoteNotificationRequestTest, EveryFailedWriteStopsWithItsLines)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        std::vector<WriteRegion> regions;
    };
    const std::string infoError = "RemoteNotificationRequest::Marshalling: Write remoteNotification_ Error";
    const std::string contentError = "RemoteNotificationResult::Marshalling: Write Content Error";
    const Case cases[] = {
        {"info", std::make_shared<RemoteNotificationInfo>("a", "b", 7),
         {{8, {"RemoteNotificationInfo::Marshalling: Read type_ Error"}},
          {16, {"RemoteNotificationInfo::Marshalling: Read data_ Error"}},
          {24, {"RemoteNotificationInfo::Marshalling: Read id_ Error"}}}},
        {"request", std::make_shared<RemoteNotificationRequest>(Request()),
         {{4, {"RemoteNotificationRequest::Marshalling: Write survivalTime_ Error"}},
          {8, {"RemoteNotificationRequest::Marshalling: Write overlayIconSize_ Error"}},
          {12, {"RemoteNotificationRequest::Marshalling: Write contentSize_ Error"}},
          {16, {infoError}},
          {24, {"RemoteNotificationInfo::Marshalling: Read type_ Error", infoError}},
          {32, {"RemoteNotificationInfo::Marshalling: Read data_ Error", infoError}},
          {40, {"RemoteNotificationInfo::Marshalling: Read id_ Error", infoError}}}},
        {"result", std::make_shared<RemoteNotificationResult>(TitleOnly(), Params()),
         {{4, {contentError}},
          {12, {"RemoteNotificationContent::Marshalling: Write Flags Error", contentError}},
          {20, {"RemoteNotificationContent::Marshalling: Write Title Error", contentError}},
          {24, {"RemoteNotificationResult::Marshalling: Write Valid Error"}},
          {48, {"Write wantParams error"}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryWriteFailure(*c.record, c.regions, c.name);
    }
}

TEST_F(RemoteNotificationRequestTest, ResultContentIsACopyThatSharesItsParts)
{
    RemoteNotificationContent content = TitleOnly();
    content.SetContentSize(77);
    RemoteNotificationResult result;
    result.SetContent(content);
    EXPECT_EQ(result.GetContent().GetTitle(), content.GetTitle());
    EXPECT_EQ(result.GetContent().GetContentSize(), 77);
    *content.GetTitle() = "changed through the shared part";
    EXPECT_EQ(*result.GetContent().GetTitle(), "changed through the shared part");
}

}  // namespace
