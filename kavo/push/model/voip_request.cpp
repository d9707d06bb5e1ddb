#include "kavo/push/model/voip_request.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::FailNull;

VoIPRequest::VoIPRequest(const int& survivalTime, const VoIPInfo& voip) : survivalTime_(survivalTime), voIP_(voip) {}

bool VoIPRequest::Marshalling(Parcel& parcel) const
{
    return parcel.WriteInt32(survivalTime_) && parcel.WriteParcelable(&voIP_);
}

sptr<VoIPRequest> VoIPRequest::Unmarshalling(Parcel& parcel)
{
    auto* request = new (std::nothrow) VoIPRequest();
    if (request == nullptr) {
        return FailNull("New voipInfoRequest error");
    }
    const bool survivalTimeRead = parcel.ReadInt32(request->survivalTime_);
    // The info is read whatever the survival time gave, so its own failure is logged too.
    sptr<VoIPInfo> info = parcel.ReadStrongParcelable<VoIPInfo>();
    if (info == nullptr) {
        internal::LogAndReport("Read VoIPInfo Error");
    }
    if (info == nullptr || !survivalTimeRead) {
        delete request;
        return FailNull("VoIPRequest unmarshalling error");
    }
    request->voIP_ = VoIPInfo(info->GetType(), info->GetData(), info->GetCallId());
    return sptr<VoIPRequest>(request);
}

bool VoIPRequest::operator==(const VoIPRequest& other) const
{
    return survivalTime_ == other.survivalTime_ && voIP_ == other.voIP_;
}

}  // namespace Kavo::Push
