// Payload records from hostile bytes. The first byte picks the record: payload, extension info
// or location request; the rest is its parcel. The last two share one parcel form, so whatever
// one of them decodes the other must decode to the same values. Each input is also the source
// of a record of the same kind built from it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/record_fuzz_util.h"
#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"
#include "kavo/push/model/remote_location_request.h"

using namespace Kavo;
using namespace Kavo::Push;

namespace {

using RecordFuzz::Source;

PushPayload BuildPayload(Source& in)
{
    std::string type = in.String();
    return PushPayload(type, in.String());
}

PushExtensionInfo BuildExtensionInfo(Source& in)
{
    const int32_t survivalTime = in.Int32();
    const bool sync = in.Bool();
    return PushExtensionInfo(survivalTime, sync, BuildPayload(in));
}

RemoteLocationRequest BuildLocationRequest(Source& in)
{
    const int32_t survivalTime = in.Int32();
    const bool sync = in.Bool();
    return RemoteLocationRequest(survivalTime, sync, BuildPayload(in));
}

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
    RecordFuzz::CheckDecodedAndBuilt<PushExtensionInfo, BuildExtensionInfo>(data, size);
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
        RecordFuzz::CheckDecodedAndBuilt<PushPayload, BuildPayload>,
        CheckExtensionInfo,
        RecordFuzz::CheckDecodedAndBuilt<RemoteLocationRequest, BuildLocationRequest>,
    };
    return RecordFuzz::Dispatch(data, size, checks);
}
