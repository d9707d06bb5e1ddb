// VoIP records from hostile bytes. The first byte picks the record: info, request, result or
// call report; the rest is its parcel.
#include <cstddef>
#include <cstdint>

#include "fuzz/record_fuzz_util.h"
#include "kavo/push/model/report_voip_call_params.h"
#include "kavo/push/model/voip_info.h"
#include "kavo/push/model/voip_request.h"
#include "kavo/push/model/voip_result.h"

using namespace Kavo::Push;

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    RecordFuzz::QuietLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const RecordFuzz::Check checks[] = {
        RecordFuzz::CheckRoundTrip<VoIPInfo>,
        RecordFuzz::CheckRoundTrip<VoIPRequest>,
        RecordFuzz::CheckRoundTripWithParams<VoIPResult, &VoIPResult::GetParameters>,
        RecordFuzz::CheckRoundTrip<ReportVoIPCallParams>,
    };
    return RecordFuzz::Dispatch(data, size, checks);
}
