// VoIPInfo: the message of a VoIP push (an incoming call): type, data and call id. A plain
// value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_VOIP_INFO_H
#define KAVO_PUSH_MODEL_VOIP_INFO_H

#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/push_payload.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT VoIPInfo : public PushPayload {
public:
    VoIPInfo() = default;
    VoIPInfo(const std::string& type, const std::string& data, const std::string& callId);
    VoIPInfo(const VoIPInfo&) = default;
    VoIPInfo(VoIPInfo&&) noexcept = default;
    VoIPInfo& operator=(const VoIPInfo&) = default;
    VoIPInfo& operator=(VoIPInfo&&) noexcept = default;
    ~VoIPInfo() override = default;

    std::string GetCallId() const { return callId_; }

    // The type, the data, then the call id.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<VoIPInfo> Unmarshalling(Parcel& parcel);

    bool operator==(const VoIPInfo& other) const;
    bool operator!=(const VoIPInfo& other) const { return !(*this == other); }

private:
    std::string callId_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_VOIP_INFO_H
