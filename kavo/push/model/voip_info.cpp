#include "kavo/push/model/voip_info.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::FailNull;

VoIPInfo::VoIPInfo(const std::string& type, const std::string& data, const std::string& callId)
    : PushPayload(type, data), callId_(callId)
{
}

// One text stands for every failed write: callers know the record by it.
bool VoIPInfo::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteString(GetType()) || !parcel.WriteString(GetData()) || !parcel.WriteString(callId_)) {
        return internal::FailWrite("VoIPInfo::Marshalling: Write type_ Error");
    }
    return true;
}

sptr<VoIPInfo> VoIPInfo::Unmarshalling(Parcel& parcel)
{
    std::string type;
    if (!parcel.ReadString(type)) {
        return FailNull("VoIPInfo::Unmarshalling: Read type Error");
    }
    std::string data;
    if (!parcel.ReadString(data)) {
        return FailNull("VoIPInfo::Unmarshalling: Read data Error");
    }
    std::string callId;
    if (!parcel.ReadString(callId)) {
        return FailNull("VoIPInfo::Unmarshalling: Read callId Error");
    }
    auto* info = new (std::nothrow) VoIPInfo(type, data, callId);
    if (info == nullptr) {
        return FailNull("New VoIPInfo error");
    }
    return sptr<VoIPInfo>(info);
}

bool VoIPInfo::operator==(const VoIPInfo& other) const
{
    return PushPayload::operator==(other) && callId_ == other.callId_;
}

}  // namespace Kavo::Push
