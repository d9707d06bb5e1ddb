// RemoteNotificationRequest: what the push service hands an application's notification
// extension: the message and the limits the extension's answer must keep (survival time,
// content size, overlay icon size). A plain value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_REQUEST_H
#define KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_REQUEST_H

#include <cstdint>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/remote_notification_info.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT RemoteNotificationRequest : public Parcelable {
public:
    RemoteNotificationRequest() = default;
    RemoteNotificationRequest(const int& survivalTime, const int& overlayIconSize, const int& contentSize,
                              const RemoteNotificationInfo& info);
    ~RemoteNotificationRequest() override = default;

    int32_t GetSurvivalTime() const { return survivalTime_; }
    int32_t GetOverlayIconSize() const { return overlayIconSize_; }
    int32_t GetContentSize() const { return contentSize_; }
    RemoteNotificationInfo GetRemoteNotification() const { return remoteNotification_; }

    // The three limits as 32-bit words, then the info behind its presence word.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<RemoteNotificationRequest> Unmarshalling(Parcel& parcel);

    bool operator==(const RemoteNotificationRequest& other) const;
    bool operator!=(const RemoteNotificationRequest& other) const { return !(*this == other); }

private:
    bool ReadLimits(Parcel& parcel);

    int32_t survivalTime_ = 0;
    int32_t overlayIconSize_ = 0;
    int32_t contentSize_ = 0;
    RemoteNotificationInfo remoteNotification_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_REQUEST_H
