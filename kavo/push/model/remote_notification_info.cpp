#include "kavo/push/model/remote_notification_info.h"

#include <cstdint>
#include <new>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::FailNull;
using internal::FailWrite;

RemoteNotificationInfo::RemoteNotificationInfo(const std::string& type, const std::string& data, const long& id)
    : PushPayload(type, data), id_(id)
{
}

// The writer's texts say "Read" and name the members; they are the texts applications know.
bool RemoteNotificationInfo::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteString(GetType())) {
        return FailWrite("RemoteNotificationInfo::Marshalling: Read type_ Error");
    }
    if (!parcel.WriteString(GetData())) {
        return FailWrite("RemoteNotificationInfo::Marshalling: Read data_ Error");
    }
    if (!parcel.WriteInt64(id_)) {
        return FailWrite("RemoteNotificationInfo::Marshalling: Read id_ Error");
    }
    return true;
}

sptr<RemoteNotificationInfo> RemoteNotificationInfo::Unmarshalling(Parcel& parcel)
{
    std::string type;
    if (!parcel.ReadString(type)) {
        return FailNull("RemoteNotificationInfo::Unmarshalling: Read type Error");
    }
    std::string data;
    if (!parcel.ReadString(data)) {
        return FailNull("RemoteNotificationInfo::Unmarshalling: Read data Error");
    }
    int64_t id = 0;
    if (!parcel.ReadInt64(id)) {
        return FailNull("RemoteNotificationInfo::Unmarshalling: Read id Error");
    }
    auto* info = new (std::nothrow) RemoteNotificationInfo(type, data, id);
    if (info == nullptr) {
        return FailNull("New RemoteNotificationInfo error");
    }
    return sptr<RemoteNotificationInfo>(info);
}

bool RemoteNotificationInfo::operator==(const RemoteNotificationInfo& other) const
{
    return PushPayload::operator==(other) && id_ == other.id_;
}

}  // namespace Kavo::Push
