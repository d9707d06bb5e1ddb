// Payload, extension info and location request: layouts, the parcel the last two share,
// malformed and truncated parcels, failed writes.
#include <memory>

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

const PushExtensionInfo INFO(60, true, PushPayload("type", "data"));

std::shared_ptr<RemoteLocationRequest> Location()
{
    return std::make_shared<RemoteLocationRequest>(60, true, PushPayload("type", "data"));
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
    const Bytes infoWire = Wire().Bool(true).I32(60).I32(1).Str("type").Str("data").Done();
    const PushExtensionInfo asynchronous(-1, false, PushPayload());
    ExpectLayouts({
        {"a payload is its type, then its data", std::make_shared<PushPayload>("type", "data"),
         Wire().Str("type").Str("data").Done(), EqualTo(PushPayload("type", "data"))},
        {"an extension info puts the sync flag before the survival time", std::make_shared<PushExtensionInfo>(INFO),
         infoWire, EqualTo(INFO)},
        {"an asynchronous info with an empty payload", std::make_shared<PushExtensionInfo>(asynchronous),
         Wire().Bool(false).I32(-1).I32(1).Str("").Str("").Done(), EqualTo(asynchronous)},
        {"a location request is byte for byte its extension info", Location(), infoWire, LocationEqualTo(INFO)},
        {"an extension info reads as a location request", std::make_shared<PushExtensionInfo>(INFO), infoWire,
         LocationEqualTo(INFO)},
        {"a location request reads as an extension info", Location(), infoWire, EqualTo(INFO)},
    });
}

TEST_F(PayloadTest, MalformedParcelsAreRefusedWithTheirLines)
{
    const Bytes noPayload = Wire().Bool(true).I32(60).I32(0).Done();
    ExpectParcels({
        {"an info whose payload presence word is 0 logs both lines",
         DecoderOf<PushExtensionInfo>(),
         noPayload,
         false,
         {READ_PAYLOAD, INFO_ERROR}},
        {"the same parcel read as a location request logs the last line again",
         DecoderOf<RemoteLocationRequest>(),
         noPayload,
         false,
         {READ_PAYLOAD, INFO_ERROR, INFO_ERROR}},
        {"any non-zero sync word reads as synchronous",
         EqualTo(INFO),
         Wire().I32(2).I32(60).I32(1).Str("type").Str("data").Done(),
         true,
         {}},
    });
}

TEST_F(PayloadTest, EveryCutOfAParcelFailsWithItsLines)
{
    ExpectEveryCut({
        {"payload", DecoderOf<PushPayload>(), Marshal(PushPayload("type", "data")), {{24, false, {PAYLOAD_ERROR}}}},
        {"extension info",
         DecoderOf<PushExtensionInfo>(),
         Marshal(INFO),
         {{12, false, {READ_PAYLOAD, INFO_ERROR}}, {36, false, {PAYLOAD_ERROR, READ_PAYLOAD, INFO_ERROR}}}},
        {"location request",
         DecoderOf<RemoteLocationRequest>(),
         Marshal(INFO),
         {{12, false, {READ_PAYLOAD, INFO_ERROR, INFO_ERROR}},
          {36, false, {PAYLOAD_ERROR, READ_PAYLOAD, INFO_ERROR, INFO_ERROR}}}},
    });
}

TEST_F(PayloadTest, FailedWritesLogNothing)
{
    ExpectEveryWriteFailure({
        {"payload", std::make_shared<PushPayload>("type", "data"), {{24, {}}}},
        {"extension info", std::make_shared<PushExtensionInfo>(INFO), {{36, {}}}},
        {"location request", Location(), {{36, {}}}},
    });
}

}  // namespace
