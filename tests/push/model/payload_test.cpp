// Payload, extension info and location request: layouts, the shared parcel of the last two,
// malformed and truncated parcels, failed writes.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"
#include "kavo/push/model/remote_location_request.h"
#include "tests/push/model/model_test_util.h"

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

const char* const PAYLOAD_ERROR = "PushPayload unmarshalling error";
const char* const READ_PAYLOAD = "PushExtensionInfo::Unmarshalling: ReadStrongParcelable Error";
const char* const INFO_ERROR = "ExtensionMessageInfo unmarshalling error";

PushExtensionInfo Info()
{
    return PushExtensionInfo(60, true, PushPayload("type", "data"));
}

// A location request reads back equal when it carries the extension info's values.
Decoder LocationEqualTo(const PushExtensionInfo& expected)
{
    return [expected](Parcel& parcel) {
        sptr<RemoteLocationRequest> read = RemoteLocationRequest::Unmarshalling(parcel);
        return read != nullptr && static_cast<const PushExtensionInfo&>(*read) == expected &&
               parcel.GetReadableBytes() == 0;
    };
}

class PayloadTest : public ::testing::Test {};

TEST_F(PayloadTest, LayoutsFollowTheWireFormatAndReadBackEqual)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        Bytes expected;
        Decoder readBack;
    };
    const Bytes infoWire = Wire().Bool(true).I32(60).I32(1).Str("type").Str("data").Done();
    const PushExtensionInfo asynchronous(-1, false, PushPayload());
    const Case cases[] = {
        {"a payload is its type, then its data", std::make_shared<PushPayload>("type", "data"),
         Wire().Str("type").Str("data").Done(), EqualTo(PushPayload("type", "data"))},
        {"an extension info puts the sync flag before the survival time", std::make_shared<PushExtensionInfo>(Info()),
         infoWire, EqualTo(Info())},
        {"an asynchronous info with an empty payload", std::make_shared<PushExtensionInfo>(asynchronous),
         Wire().Bool(false).I32(-1).I32(1).Str("").Str("").Done(), EqualTo(asynchronous)},
        {"a location request is byte for byte its extension info",
         std::make_shared<RemoteLocationRequest>(60, true, PushPayload("type", "data")), infoWire,
         LocationEqualTo(Info())},
        {"an extension info reads as a location request", std::make_shared<PushExtensionInfo>(Info()), infoWire,
         LocationEqualTo(Info())},
        {"a location request reads as an extension info",
         std::make_shared<RemoteLocationRequest>(60, true, PushPayload("type", "data")), infoWire, EqualTo(Info())},
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

TEST_F(PayloadTest, MalformedParcelsAreRefusedWithTheirLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        Outcome outcome;
    };
    const Bytes noPayload = Wire().Bool(true).I32(60).I32(0).Done();
    const Case cases[] = {
        {"a payload holding one string is refused", DecoderOf<PushPayload>(), Wire().Str("type").Done(),
         {false, {PAYLOAD_ERROR}}},
        {"an info whose payload presence word is 0 logs both lines", DecoderOf<PushExtensionInfo>(), noPayload,
         {false, {READ_PAYLOAD, INFO_ERROR}}},
        {"the same parcel read as a location request logs the last line again", DecoderOf<RemoteLocationRequest>(),
         noPayload, {false, {READ_PAYLOAD, INFO_ERROR, INFO_ERROR}}},
        {"an info whose payload is cut logs the payload's line first", DecoderOf<PushExtensionInfo>(),
         Wire().Bool(true).I32(60).I32(1).Str("type").Done(), {false, {PAYLOAD_ERROR, READ_PAYLOAD, INFO_ERROR}}},
        {"any non-zero sync word reads as synchronous", EqualTo(Info()),
         Wire().I32(2).I32(60).I32(1).Str("type").Str("data").Done(), {true, {}}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        EXPECT_EQ(c.decode(parcel), c.outcome.decodes) << c.name;
        watch.Expect(c.outcome.logs, c.name);
    }
}

TEST_F(PayloadTest, EveryCutOfAParcelFailsWithItsLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        std::vector<Region> regions;
    };
    const Texts payloadCut = {PAYLOAD_ERROR, READ_PAYLOAD, INFO_ERROR};
    const Case cases[] = {
        {"payload", DecoderOf<PushPayload>(), Marshal(PushPayload("type", "data")), {{24, {false, {PAYLOAD_ERROR}}}}},
        {"extension info", DecoderOf<PushExtensionInfo>(), Marshal(Info()),
         {{12, {false, {READ_PAYLOAD, INFO_ERROR}}}, {36, {false, payloadCut}}}},
        {"location request", DecoderOf<RemoteLocationRequest>(), Marshal(Info()),
         {{12, {false, {READ_PAYLOAD, INFO_ERROR, INFO_ERROR}}},
          {36, {false, {PAYLOAD_ERROR, READ_PAYLOAD, INFO_ERROR, INFO_ERROR}}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryCut(c.decode, c.bytes, c.regions, c.name);
    }
}

TEST_F(PayloadTest, FailedWritesLogNothing)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        std::vector<WriteRegion> regions;
    };
    const Case cases[] = {
        {"payload", std::make_shared<PushPayload>("type", "data"), {{24, {}}}},
        {"extension info", std::make_shared<PushExtensionInfo>(Info()), {{36, {}}}},
        {"location request", std::make_shared<RemoteLocationRequest>(60, true, PushPayload("type", "data")),
         {{36, {}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryWriteFailure(*c.record, c.regions, c.name);
    }
}

}  // namespace
