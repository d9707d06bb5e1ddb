#include "kavo/push/model/report_voip_call_params.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::Fail;

ReportVoIPCallParams::ReportVoIPCallParams(const std::string& callId, const unsigned int& status)
    : callId_(callId), status_(status)
{
}

bool ReportVoIPCallParams::Marshalling(Parcel& parcel) const
{
    return parcel.WriteString(callId_) && parcel.WriteUint32(status_);
}

sptr<ReportVoIPCallParams> ReportVoIPCallParams::Unmarshalling(Parcel& parcel)
{
    std::string callId;
    uint32_t status = 0;
    if (!parcel.ReadString(callId) || !parcel.ReadUint32(status)) {
        return Fail("ReportVoIPCallParams unmarshalling error");
    }
    auto* params = new (std::nothrow) ReportVoIPCallParams(callId, status);
    if (params == nullptr) {
        return Fail("New ReportVoIPCallParams error");
    }
    return sptr<ReportVoIPCallParams>(params);
}

bool ReportVoIPCallParams::operator==(const ReportVoIPCallParams& other) const
{
    return callId_ == other.callId_ && status_ == other.status_;
}

}  // namespace Kavo::Push
