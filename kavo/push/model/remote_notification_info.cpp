#include "kavo/push/model/remote_notification_info.h"

#include <cstdint>
#include <new>
#include <utility>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::Fail;

RemoteNotificationInfo::RemoteNotificationInfo(const std::string& type, const std::string& data, const long& id)
    : PushPayload(type, data), id_(id)
{
}

// The writer's texts say "Read" and name the members; they are kept letter for letter.
bool RemoteNotificationInfo::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteString(type_)) {
        return Fail("RemoteNotificationInfo::Marshalling: Read type_ Error");
    }
    if (!parcel.WriteString(data_)) {
        return Fail("RemoteNotificationInfo::Marshalling: Read data_ Error");
    }
    if (!parcel.WriteInt64(id_)) {
        return Fail("RemoteNotificationInfo::Marshalling: Read id_ Error");
    }
    return true;
}

bool RemoteNotificationInfo::ReadFields(Parcel& parcel)
{
    if (!parcel.ReadString(type_)) {
        return Fail("RemoteNotificationInfo::Unmarshalling: Read type Error");
    }
    if (!parcel.ReadString(data_)) {
        return Fail("RemoteNotificationInfo::Unmarshalling: Read data Error");
    }
    int64_t id = 0;
    if (!parcel.ReadInt64(id)) {
        return Fail("RemoteNotificationInfo::Unmarshalling: Read id Error");
    }
    id_ = id;
    return true;
}

sptr<RemoteNotificationInfo> RemoteNotificationInfo::Unmarshalling(Parcel& parcel)
{
    RemoteNotificationInfo read;
    if (!read.ReadFields(parcel)) {
        return nullptr;
    }
    auto* info = new (std::nothrow) RemoteNotificationInfo(std::move(read));
    if (info == nullptr) {
        return Fail("New RemoteNotificationInfo error");
    }
    return sptr<RemoteNotificationInfo>(info);
}

bool RemoteNotificationInfo::operator==(const RemoteNotificationInfo& other) const
{
    return PushPayload::operator==(other) && id_ == other.id_;
}

}  // namespace Kavo::Push
