#include "kavo/push/model/remote_notification_request.h"

#include <cstdint>

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
            // The info is read even when a limit failed, so its failure is logged as well. It is
            // read straight into the request, behind its presence word, as its own Unmarshalling
            // would read it; the request is thrown away on any failure.
            int32_t present = 0;
            if (!parcel.ReadInt32(present) || present == 0 || !request.remoteNotification_.ReadFields(parcel)) {
                LogAndReport("New RemoteNotificationInfo Error");
                return false;
            }
            return limitsRead;
        });
}

bool RemoteNotificationRequest::operator==(const RemoteNotificationRequest& other) const
{
    return survivalTime_ == other.survivalTime_ && overlayIconSize_ == other.overlayIconSize_ &&
           contentSize_ == other.contentSize_ && remoteNotification_ == other.remoteNotification_;
}

}  // namespace Kavo::Push
