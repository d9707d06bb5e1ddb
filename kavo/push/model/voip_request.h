// VoIPRequest: a VoIP message on its way to an application's extension, with its survival
// time. A plain value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_VOIP_REQUEST_H
#define KAVO_PUSH_MODEL_VOIP_REQUEST_H

#include <cstdint>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/voip_info.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT VoIPRequest : public Parcelable {
public:
    VoIPRequest() = default;
    VoIPRequest(const int& survivalTime, const VoIPInfo& voip);
    ~VoIPRequest() override = default;

    int32_t GetSurvivalTime() const { return survivalTime_; }
    VoIPInfo GetVoIP() const { return voIP_; }

    // The survival time, then the info behind its presence word; false at the first failed
    // write, logging nothing of its own.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<VoIPRequest> Unmarshalling(Parcel& parcel);

    bool operator==(const VoIPRequest& other) const;
    bool operator!=(const VoIPRequest& other) const { return !(*this == other); }

private:
    int32_t survivalTime_ = 0;
    VoIPInfo voIP_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_VOIP_REQUEST_H
