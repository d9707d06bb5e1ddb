#include "kavo/push/model/voip_info.h"

#include <new>
#include <utility>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::Fail;

VoIPInfo::VoIPInfo(const std::string& type, const std::string& data, const std::string& callId)
    : PushPayload(type, data), callId_(callId)
{
}

// One text stands for every failed write, kept letter for letter.
bool VoIPInfo::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteString(type_) || !parcel.WriteString(data_) || !parcel.WriteString(callId_)) {
        return Fail("VoIPInfo::Marshalling: Write type_ Error");
    }
    return true;
}

sptr<VoIPInfo> VoIPInfo::Unmarshalling(Parcel& parcel)
{
    std::string type;
    if (!parcel.ReadString(type)) {
        return Fail("VoIPInfo::Unmarshalling: Read type Error");
    }
    std::string data;
    if (!parcel.ReadString(data)) {
        return Fail("VoIPInfo::Unmarshalling: Read data Error");
    }
    std::string callId;
    if (!parcel.ReadString(callId)) {
        return Fail("VoIPInfo::Unmarshalling: Read callId Error");
    }
    auto* info = new (std::nothrow) VoIPInfo;
    if (info == nullptr) {
        return Fail("New VoIPInfo error");
    }
    info->type_ = std::move(type);
    info->data_ = std::move(data);
    info->callId_ = std::move(callId);
    return sptr<VoIPInfo>(info);
}

bool VoIPInfo::operator==(const VoIPInfo& other) const
{
    return PushPayload::operator==(other) && callId_ == other.callId_;
}

}  // namespace Kavo::Push
