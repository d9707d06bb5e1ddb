#include "kavo/push/model/voip_request.h"

#include <utility>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

VoIPRequest::VoIPRequest(const int& survivalTime, const VoIPInfo& voip) : survivalTime_(survivalTime), voIP_(voip) {}

bool VoIPRequest::Marshalling(Parcel& parcel) const
{
    return parcel.WriteInt32(survivalTime_) && parcel.WriteParcelable(&voIP_);
}

sptr<VoIPRequest> VoIPRequest::Unmarshalling(Parcel& parcel)
{
    return internal::AllocateThenRead<VoIPRequest>(
        "New voipInfoRequest error", [&parcel](VoIPRequest& request) -> bool {
            const bool survivalTimeRead = parcel.ReadInt32(request.survivalTime_);
            // The info is read whatever the survival time gave, so its own failure is logged too.
            sptr<VoIPInfo> info = parcel.ReadStrongParcelable<VoIPInfo>();
            if (info == nullptr) {
                internal::LogAndReport("Read VoIPInfo Error");
            }
            if (info == nullptr || !survivalTimeRead) {
                return Fail("VoIPRequest unmarshalling error");
            }
            request.voIP_ = std::move(*info);
            return true;
        });
}

bool VoIPRequest::operator==(const VoIPRequest& other) const
{
    return survivalTime_ == other.survivalTime_ && voIP_ == other.voIP_;
}

}  // namespace Kavo::Push
