// The steps of the typical remote-notification request that the demo and the push service both
// take with the library: the extension's start and failure events, the public code of the
// extension call, and the result read back and checked against the request. Stateless; any thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_REQUEST_REQUEST_STEPS_H
#define KAVO_TOOLS_KAVO_PUSH_REQUEST_REQUEST_STEPS_H

#include <cstddef>
#include <string>

#include "kavo/host/ipc/ipc_channel.h"
#include "kavo/host/ipc/parcel.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/platform/push_bundle_helper.h"

namespace KavoTool {

// A failure without a public code of its own reaches the application as a system error.
Kavo::Push::PushBaseRsp PublicResponse(const Kavo::Push::PushBaseRsp& rsp);

// The START_EXTENSION event before the extension starts, and START_EXTENSION_ERROR with the code
// when a call to it failed.
void ReportExtensionStart(const Kavo::Push::ClientUserInfo& caller, const std::string& extension);
void ReportExtensionError(const Kavo::Push::ClientUserInfo& caller, const std::string& extension, int32_t code);

// What the extension call's outcome means to the application: OK succeeds, a passed deadline is
// the callback timeout, anything else a failed callback.
Kavo::Push::PushBaseRsp ExtensionCallResponse(Kavo::IpcResult result);

struct ResultCheck {
    size_t contentBytes = 0;       // the content's parcel size, which is what its limit bounds
    Kavo::Push::PushBaseRsp icon;  // failed when the overlay icon was over its limit and removed
    bool read = false;             // the reply held a result
};

// Reads the extension's reply as a result and checks its content against the request. An
// oversized icon is removed from `result` and the rest of the content still goes to the
// application; a reply that is not a result, or content over its limit, fails.
Kavo::Push::PushBaseRsp CheckExtensionResult(const Kavo::Push::RemoteNotificationRequest& request, Kavo::Parcel& reply,
                                             Kavo::sptr<Kavo::Push::RemoteNotificationResult>& result,
                                             ResultCheck& check);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_REQUEST_REQUEST_STEPS_H
