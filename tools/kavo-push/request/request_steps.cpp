#include "request/request_steps.h"

#include "kavo/push/common/push_error_message.h"
#include "kavo/push/event/push_event_report.h"
#include "kavo/push/validate/remote_notification_extension_validate.h"

namespace KavoTool {

using namespace Kavo::Push;

namespace {

const char* const EXTENSION_TYPE = "remoteNotification";

}  // namespace

PushBaseRsp PublicResponse(const PushBaseRsp& rsp)
{
    if (rsp.Succeed() || PushErrorMessage::IsErrorExist(rsp.GetErrAsInt32())) {
        return rsp;
    }
    return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL);
}

void ReportExtensionStart(const ClientUserInfo& caller, const std::string& extension)
{
    PushEventReport::SendEvent(PushEvent::START_EXTENSION,
                               PushEventInfo(EXTENSION_TYPE, caller.bundleName, extension, caller.userId, 0));
}

void ReportExtensionError(const ClientUserInfo& caller, const std::string& extension, int32_t code)
{
    PushEventReport::SendEvent(PushEvent::START_EXTENSION_ERROR,
                               PushEventInfo(EXTENSION_TYPE, caller.bundleName, extension, caller.userId, code));
}

PushBaseRsp ExtensionCallResponse(Kavo::IpcResult result)
{
    if (result == Kavo::IpcResult::OK) {
        return PushBaseRsp();
    }
    return PushBaseRsp(result == Kavo::IpcResult::DEADLINE_PASSED ? PUSH_ERR_EXTENSION_CALLBACK_TIMEOUT
                                                                  : PUSH_ERR_EXTENSION_CALLBACK_FAILED);
}

PushBaseRsp CheckExtensionResult(const RemoteNotificationRequest& request, Kavo::Parcel& reply,
                                 Kavo::sptr<RemoteNotificationResult>& result, ResultCheck& check)
{
    result = RemoteNotificationResult::Unmarshalling(reply);
    check.read = result != nullptr;
    if (result == nullptr) {
        return PushBaseRsp(PUSH_ERR_NOTIFICATION_CONTENT_INVALID);
    }
    RemoteNotificationContent content = result->GetContent();
    Kavo::Parcel measured;
    content.Marshalling(measured);
    check.contentBytes = measured.GetDataSize();
    content.SetContentSize(static_cast<long>(check.contentBytes));
    PushBaseRsp rsp = RemoteNotificationExtensionValidate::ValidateRemoteNotificationContent(request, content);
    if (!rsp.Succeed()) {
        return rsp;
    }
    check.icon = RemoteNotificationExtensionValidate::ValidateRemoteNotificationOverlayIcon(request, content);
    if (!check.icon.Succeed()) {
        result->SetContent(content);
    }
    return PushBaseRsp();
}

}  // namespace KavoTool
