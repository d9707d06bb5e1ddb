// The push service's answer to an application as it crosses the socket: the public code, its
// message (empty on success), then the RemoteNotificationResult when the code is 0. The request
// is the RemoteNotificationRequest's own parcel. Stateless; any thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_SERVICE_REPLY_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_SERVICE_REPLY_H

#include <cstdint>
#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/model/remote_notification_result.h"

namespace KavoTool {

struct ServiceReply {
    int32_t code = -1;
    std::string message;
    Kavo::sptr<Kavo::Push::RemoteNotificationResult> result;  // null unless the code is 0
};

// The message of a public code as applications receive it.
std::string PublicMessage(int32_t code);

// `result` must be given when `rsp` succeeded.
bool WriteServiceReply(Kavo::Parcel& parcel, const Kavo::Push::PushBaseRsp& rsp,
                       const Kavo::Push::RemoteNotificationResult* result);
bool ReadServiceReply(Kavo::Parcel& parcel, ServiceReply& reply);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_SERVICE_REPLY_H
