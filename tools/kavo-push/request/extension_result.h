// What the application's extension renders for a push message: a title, the message's text, a
// badge and an overlay icon, with parameters that say who answered. Stateless; any thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_REQUEST_EXTENSION_RESULT_H
#define KAVO_TOOLS_KAVO_PUSH_REQUEST_EXTENSION_RESULT_H

#include <string>

#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "request/extension_process.h"

namespace KavoTool {

// The parameters name this process and the caller the kernel reported for the socket; with an
// `app`, also the application and the request's notification id, so an answer given to another
// request is caught. BIG_ICON and LONG_TEXT render over the request's limits.
Kavo::Push::RemoteNotificationResult RenderResult(const Kavo::Push::RemoteNotificationRequest& request,
                                                  ExtensionBehaviour behaviour, const std::string& app);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_REQUEST_EXTENSION_RESULT_H
