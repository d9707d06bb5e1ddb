// VoIP records from hostile bytes. The first byte picks the record: info, request, result or
// call report; the rest is its parcel, and the source of a record of the same kind built from it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/record_fuzz_util.h"
#include "kavo/push/model/report_voip_call_params.h"
#include "kavo/push/model/voip_info.h"
#include "kavo/push/model/voip_request.h"
#include "kavo/push/model/voip_result.h"

using namespace Kavo::Push;
using RecordFuzz::CheckDecodedAndBuilt;
using RecordFuzz::Source;

namespace {

VoIPInfo BuildInfo(Source& in)
{
    std::string type = in.String();
    std::string data = in.String();
    return VoIPInfo(type, data, in.String());
}

VoIPRequest BuildRequest(Source& in)
{
    const int32_t survivalTime = in.Int32();
    return VoIPRequest(survivalTime, BuildInfo(in));
}

VoIPResult BuildResult(Source& in)
{
    return VoIPResult(in.Bool() ? in.Params() : nullptr);
}

ReportVoIPCallParams BuildReport(Source& in)
{
    std::string callId = in.String();
    return ReportVoIPCallParams(callId, static_cast<uint32_t>(in.Int32()));
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
        CheckDecodedAndBuilt<VoIPInfo, BuildInfo>,
        CheckDecodedAndBuilt<VoIPRequest, BuildRequest>,
        CheckDecodedAndBuilt<VoIPResult, BuildResult,
                             RecordFuzz::CheckRoundTripWithParams<VoIPResult, &VoIPResult::GetParameters>>,
        CheckDecodedAndBuilt<ReportVoIPCallParams, BuildReport>,
    };
    return RecordFuzz::Dispatch(data, size, checks);
}
