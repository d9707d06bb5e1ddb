// Notification info, request and result: layouts, the request's cascade of messages, truncated
// parcels and failed writes.
#include <cstdint>
#include <memory>
#include <string>

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
const char* const READ_CONTENT = "RemoteNotificationResult::ReadFromParcel: Read Content Error";
const char* const READ_VALID = "RemoteNotificationResult::ReadFromParcel: Read Valid from Parcel Error";

std::shared_ptr<AAFwk::WantParams> Params()
{
    auto params = std::make_shared<AAFwk::WantParams>();
    params->SetParam("k", AAFwk::WantParams::Value(int32_t{7}));
    return params;
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
    return Wire().I32(1).U64(1).Str("T").Bool(true).I32(1).I32(1).Str("k").I32(3).I32(7).Done();
}

class RemoteNotificationRequestTest : public ::testing::Test {};

TEST_F(RemoteNotificationRequestTest, ResultsRoundTripWithEveryOptionalPart)
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

        const Bytes bytes = Marshal(result);
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
    const RemoteNotificationInfo info("a", "b", 7);
    const RemoteNotificationResult bare;
    const RemoteNotificationResult full(TitleOnly(), Params());
    ExpectLayouts({
        {"a request is three words, a presence word, two strings and a 64-bit id",
         std::make_shared<RemoteNotificationRequest>(Request()),
         Wire().I32(30).I32(1024).I32(4096).I32(1).Str("a").Str("b").I64(7).Done(), EqualTo(Request())},
        {"an info is two strings and a 64-bit id", std::make_shared<RemoteNotificationInfo>(info),
         Wire().Str("a").Str("b").I64(7).Done(), EqualTo(info)},
        {"a result without parameters is its content, then false", std::make_shared<RemoteNotificationResult>(bare),
         Wire().I32(1).U64(0).Bool(false).Done(), EqualTo(bare)},
        {"a result with parameters adds true and the parameters behind a presence word",
         std::make_shared<RemoteNotificationResult>(full), ResultWire(), EqualTo(full)},
    });
}

TEST_F(RemoteNotificationRequestTest, MalformedParcelsAreRefusedWithTheirLines)
{
    const Decoder request = DecoderOf<RemoteNotificationRequest>();
    const Decoder result = DecoderOf<RemoteNotificationResult>();
    ExpectParcels({
        {"a request whose info presence word is 0 is refused",
         request,
         Wire().I32(1).I32(2).I32(3).I32(0).Done(),
         false,
         {NEW_INFO}},
        {"a result whose content presence word is 0 is refused",
         result,
         Wire().I32(0).Bool(false).Done(),
         false,
         {READ_CONTENT, RESULT_ERROR}},
        {"a result announcing parameters with presence word 0 is refused",
         result,
         Wire().I32(1).U64(0).Bool(true).I32(0).Done(),
         false,
         {"Read wantParams error", RESULT_ERROR}},
        {"a result whose parameters hold an unknown tag is refused",
         result,
         Wire().I32(1).U64(0).Bool(true).I32(1).I32(1).Str("k").I32(99).I32(7).Done(),
         false,
         {"Read wantParams error", RESULT_ERROR}},
        {"a result whose nested content fails logs the content's lines first",
         result,
         Wire().I32(1).U64(0x04).I32(0).Done(),
         false,
         {"overlayIcon_ is Null", "RemoteNotificationContent Unmarshalling Error", READ_CONTENT, RESULT_ERROR}},
    });
}

TEST_F(RemoteNotificationRequestTest, EveryCutOfAParcelFailsWithItsLines)
{
    const char* const readType = "RemoteNotificationInfo::Unmarshalling: Read type Error";
    const char* const readData = "RemoteNotificationInfo::Unmarshalling: Read data Error";
    const char* const readId = "RemoteNotificationInfo::Unmarshalling: Read id Error";
    const Texts validLost = {READ_VALID, RESULT_ERROR};
    const Texts paramsLost = {"Read wantParams error", RESULT_ERROR};
    // A cut at 0 is the empty request (the whole cascade), one at 4 ends after its first integer.
    // The content reads its flags and title leniently: a short one stays where it was, and the
    // result's flag after it is read from the content's own bytes.
    ExpectEveryCut({
        {"info",
         DecoderOf<RemoteNotificationInfo>(),
         Marshal(RemoteNotificationInfo("a", "b", 7)),
         {{8, false, {readType}}, {16, false, {readData}}, {24, false, {readId}}}},
        {"request",
         DecoderOf<RemoteNotificationRequest>(),
         Marshal(Request()),
         {{4, false, {SURVIVAL, SURVIVAL, CONTENT_SIZE, NEW_INFO}},
          {8, false, {SURVIVAL, CONTENT_SIZE, NEW_INFO}},
          {12, false, {CONTENT_SIZE, NEW_INFO}},
          {16, false, {NEW_INFO}},
          {24, false, {readType, NEW_INFO}},
          {32, false, {readData, NEW_INFO}},
          {40, false, {readId, NEW_INFO}}}},
        {"result",
         DecoderOf<RemoteNotificationResult>(),
         ResultWire(),
         {{4, false, {READ_CONTENT, RESULT_ERROR}},
          {8, false, validLost},
          {12, false, paramsLost},
          {16, false, validLost},
          {20, false, paramsLost},
          {24, false, validLost},
          {48, false, paramsLost}}},
    });
}

TEST_F(RemoteNotificationRequestTest, EveryFailedWriteStopsWithItsLines)
{
    const char* const typeWrite = "RemoteNotificationInfo::Marshalling: Read type_ Error";
    const char* const dataWrite = "RemoteNotificationInfo::Marshalling: Read data_ Error";
    const char* const idWrite = "RemoteNotificationInfo::Marshalling: Read id_ Error";
    const char* const infoWrite = "RemoteNotificationRequest::Marshalling: Write remoteNotification_ Error";
    const char* const contentWrite = "RemoteNotificationResult::Marshalling: Write Content Error";
    ExpectEveryWriteFailure({
        {"info",
         std::make_shared<RemoteNotificationInfo>("a", "b", 7),
         {{8, {typeWrite}}, {16, {dataWrite}}, {24, {idWrite}}}},
        {"request",
         std::make_shared<RemoteNotificationRequest>(Request()),
         {{4, {"RemoteNotificationRequest::Marshalling: Write survivalTime_ Error"}},
          {8, {"RemoteNotificationRequest::Marshalling: Write overlayIconSize_ Error"}},
          {12, {"RemoteNotificationRequest::Marshalling: Write contentSize_ Error"}},
          {16, {infoWrite}},
          {24, {typeWrite, infoWrite}},
          {32, {dataWrite, infoWrite}},
          {40, {idWrite, infoWrite}}}},
        {"result",
         std::make_shared<RemoteNotificationResult>(TitleOnly(), Params()),
         {{4, {contentWrite}},
          {12, {"RemoteNotificationContent::Marshalling: Write Flags Error", contentWrite}},
          {20, {"RemoteNotificationContent::Marshalling: Write Title Error", contentWrite}},
          {24, {"RemoteNotificationResult::Marshalling: Write Valid Error"}},
          {48, {"Write wantParams error"}}}},
    });
}

TEST_F(RemoteNotificationRequestTest, ResultContentIsACopyThatSharesItsParts)
{
    RemoteNotificationContent content = TitleOnly();
    content.SetContentSize(77);
    RemoteNotificationResult result;
    result.SetContent(content);
    EXPECT_EQ(result.GetContent().GetTitle(), content.GetTitle());
    EXPECT_EQ(result.GetContent().GetContentSize(), 77);
}

}  // namespace
