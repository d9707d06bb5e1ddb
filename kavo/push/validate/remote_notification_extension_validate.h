// Checks a remote notification request, and the content an extension produced for it, against
// the request's limits. Stateless; may run on any thread. The overlay-icon check writes to the
// content it is given (it removes an oversized icon), so that content must not be shared with
// another thread during the call.
#ifndef KAVO_PUSH_VALIDATE_REMOTE_NOTIFICATION_EXTENSION_VALIDATE_H
#define KAVO_PUSH_VALIDATE_REMOTE_NOTIFICATION_EXTENSION_VALIDATE_H

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_request.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT RemoteNotificationExtensionValidate {
public:
    static constexpr int MIN_SIZE_KIB = 1;
    static constexpr int MAX_SIZE_KIB = 250;

    // Survival time, then the declared overlay-icon and content limits; the first failure wins.
    static PushBaseRsp ValidateRemoteNotificationRequest(const RemoteNotificationRequest& request);
    // The produced content may hold at most the request's content limit x 1024 bytes.
    static PushBaseRsp ValidateRemoteNotificationContent(const RemoteNotificationRequest& request,
                                                         const RemoteNotificationContent& content);
    // An icon over the request's limit x 1024 bytes is removed from the content, and the
    // result says so.
    static PushBaseRsp ValidateRemoteNotificationOverlayIcon(const RemoteNotificationRequest& request,
                                                             RemoteNotificationContent& content);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_VALIDATE_REMOTE_NOTIFICATION_EXTENSION_VALIDATE_H
