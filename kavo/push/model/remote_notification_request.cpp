#include "kavo/push/model/remote_notification_request.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::FailRead;
using internal::FailWrite;
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
        return FailWrite("RemoteNotificationRequest::Marshalling: Write survivalTime_ Error");
    }
    if (!parcel.WriteInt32(overlayIconSize_)) {
        return FailWrite("RemoteNotificationRequest::Marshalling: Write overlayIconSize_ Error");
    }
    if (!parcel.WriteInt32(contentSize_)) {
        return FailWrite("RemoteNotificationRequest::Marshalling: Write contentSize_ Error");
    }
    if (!parcel.WriteParcelable(&remoteNotification_)) {
        return FailWrite("RemoteNotificationRequest::Marshalling: Write remoteNotification_ Error");
    }
    return true;
}

// Applications and the service match on this exact cascade: a failed survival time is logged
// twice, and a failed overlay icon size is logged under the survival time's text; each failure
// also ends in the content size's text.
bool RemoteNotificationRequest::ReadLimits(Parcel& parcel)
{
    if (!parcel.ReadInt32(survivalTime_)) {
        LogAndReport("RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error");
        LogAndReport("RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error");
        return FailRead("RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error");
    }
    if (!parcel.ReadInt32(overlayIconSize_)) {
        LogAndReport("RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error");
        return FailRead("RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error");
    }
    if (!parcel.ReadInt32(contentSize_)) {
        return FailRead("RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error");
    }
    return true;
}

sptr<RemoteNotificationRequest> RemoteNotificationRequest::Unmarshalling(Parcel& parcel)
{
    auto* request = new (std::nothrow) RemoteNotificationRequest();
    if (request == nullptr) {
        return internal::FailNull("New remoteNotificationRequest error");
    }
    const bool limitsRead = request->ReadLimits(parcel);
    // The info is read even when a limit failed, so its failure is logged as well.
    sptr<RemoteNotificationInfo> info = parcel.ReadStrongParcelable<RemoteNotificationInfo>();
    if (info == nullptr) {
        LogAndReport("New RemoteNotificationInfo Error");
    }
    if (!limitsRead || info == nullptr) {
        delete request;
        return nullptr;
    }
    request->remoteNotification_ = RemoteNotificationInfo(info->GetType(), info->GetData(), info->GetId());
    return sptr<RemoteNotificationRequest>(request);
}

bool RemoteNotificationRequest::operator==(const RemoteNotificationRequest& other) const
{
    return survivalTime_ == other.survivalTime_ && overlayIconSize_ == other.overlayIconSize_ &&
           contentSize_ == other.contentSize_ && remoteNotification_ == other.remoteNotification_;
}

}  // namespace Kavo::Push
