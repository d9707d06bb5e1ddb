// Payload records from hostile bytes. The first byte picks the record: payload, extension info
// or location request; the rest is its parcel. The last two share one parcel form, so whatever
// one of them decodes the other must decode to the same values.
#include <cstddef>
#include <cstdint>

#include "fuzz/record_fuzz_util.h"
#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"
#include "kavo/push/model/remote_location_request.h"

using namespace Kavo;
using namespace Kavo::Push;

namespace {

void CheckSharedForm(const uint8_t* data, size_t size)
{
    Parcel asInfo;
    Parcel asRequest;
    if (!asInfo.ParseFrom(data, size) || !asRequest.ParseFrom(data, size)) {
        return;
    }
    sptr<PushExtensionInfo> info = PushExtensionInfo::Unmarshalling(asInfo);
    sptr<RemoteLocationRequest> request = RemoteLocationRequest::Unmarshalling(asRequest);
    if ((info == nullptr) != (request == nullptr)) {
        RecordFuzz::Breach("extension info and location request disagree on one parcel");
    }
    if (info != nullptr && !(*info == static_cast<const PushExtensionInfo&>(*request))) {
        RecordFuzz::Breach("extension info and location request read different values");
    }
}

void CheckExtensionInfo(const uint8_t* data, size_t size)
{
    RecordFuzz::CheckRoundTrip<PushExtensionInfo>(data, size);
    CheckSharedForm(data, size);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    RecordFuzz::QuietLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const RecordFuzz::Check checks[] = {
        RecordFuzz::CheckRoundTrip<PushPayload>,
        CheckExtensionInfo,
        RecordFuzz::CheckRoundTrip<RemoteLocationRequest>,
    };
    return RecordFuzz::Dispatch(data, size, checks);
}
