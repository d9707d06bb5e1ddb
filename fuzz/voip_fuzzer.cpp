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
    if (size == 0) {
        return 0;
    }
    const uint8_t* body = data + 1;
    const size_t bodySize = size - 1;
    switch (data[0] % 4) {
        case 0:
            RecordFuzz::CheckRoundTrip<VoIPInfo>(body, bodySize);
            break;
        case 1:
            RecordFuzz::CheckRoundTrip<VoIPRequest>(body, bodySize);
            break;
        case 2:
            RecordFuzz::CheckRoundTrip<VoIPResult>(body, bodySize, [](const VoIPResult& a, const VoIPResult& b) {
                return a == b || RecordFuzz::HasNaN(a.GetParameters().get());
            });
            break;
        default:
            RecordFuzz::CheckRoundTrip<ReportVoIPCallParams>(body, bodySize);
            break;
    }
    return 0;
}
