#include "kavo/push/model/remote_notification_request.h"

#include <utility>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

using internal::LogAndReport;

RemoteNotificationRequest::RemoteNotificationRequest(const int& survivalTime, const int& overlayIconSize,
                                                     const int& contentSize, const RemoteNotificationInfo& info)
    : survivalTime_(survivalTime), overlayIconSize_(overlayIconSize), contentSize_(contentSize),
      remoteNotification_(info)
{
}

bool RemoteNotificationRequest::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteInt32(survivalTime_)) {
        return Fail("RemoteNotificationRequest::Marshalling: Write survivalTime_ Error");
    }
    if (!parcel.WriteInt32(overlayIconSize_)) {
        return Fail("RemoteNotificationRequest::Marshalling: Write overlayIconSize_ Error");
    }
    if (!parcel.WriteInt32(contentSize_)) {
        return Fail("RemoteNotificationRequest::Marshalling: Write contentSize_ Error");
    }
    if (!parcel.WriteParcelable(&remoteNotification_)) {
        return Fail("RemoteNotificationRequest::Marshalling: Write remoteNotification_ Error");
    }
    return true;
}

// The cascade is kept letter for letter: a failed survival time is logged twice, a failed
// overlay icon size under the survival time's text, and each failure ends in the content
// size's text.
bool RemoteNotificationRequest::ReadLimits(Parcel& parcel)
{
    if (!parcel.ReadInt32(survivalTime_)) {
        LogAndReport("RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error");
        LogAndReport("RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error");
        return Fail("RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error");
    }
    if (!parcel.ReadInt32(overlayIconSize_)) {
        LogAndReport("RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error");
        return Fail("RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error");
    }
    if (!parcel.ReadInt32(contentSize_)) {
        return Fail("RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error");
    }
    return true;
}

sptr<RemoteNotificationRequest> RemoteNotificationRequest::Unmarshalling(Parcel& parcel)
{
    return internal::AllocateThenRead<RemoteNotificationRequest>(
        "New remoteNotificationRequest error", [&parcel](RemoteNotificationRequest& request) -> bool {
            const bool limitsRead = request.ReadLimits(parcel);
            // The info is read even when a limit failed, so its failure is logged as well.
            sptr<RemoteNotificationInfo> info = parcel.ReadStrongParcelable<RemoteNotificationInfo>();
            if (info == nullptr) {
                LogAndReport("New RemoteNotificationInfo Error");
                return false;
            }
            if (!limitsRead) {
                return false;
            }
            request.remoteNotification_ = std::move(*info);
            return true;
        });
}

bool RemoteNotificationRequest::operator==(const RemoteNotificationRequest& other) const
{
    return survivalTime_ == other.survivalTime_ && overlayIconSize_ == other.overlayIconSize_ &&
           contentSize_ == other.contentSize_ && remoteNotification_ == other.remoteNotification_;
}

}  // namespace Kavo::Push
