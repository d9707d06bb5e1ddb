// Validation: a request's limits, and the content an extension produced for it.
#include <memory>

#include <kavo/host/media/pixel_map.h>
#include <kavo/push/validate/remote_notification_extension_validate.h>

#include "show.h"

using namespace Kavo::Push;
using Validate = RemoteNotificationExtensionValidate;

int main()
{
    // guide: request
    RemoteNotificationInfo info("mail", "2 new messages", 7);
    PushBaseRsp good = Validate::ValidateRemoteNotificationRequest(RemoteNotificationRequest(30, 2, 8, info));
    PushBaseRsp bad = Validate::ValidateRemoteNotificationRequest(RemoteNotificationRequest(21601, 2, 8, info));
    Guide::Show("30 s, 2 KiB, 8 KiB", good.Succeed(), true);
    Guide::Show("21601 s", bad.GetInfo(), "survival time is invalid: 21601: error(401)");
    // end guide

    // guide: content
    RemoteNotificationRequest request(30, 2, 8, info);
    RemoteNotificationContent content;
    content.SetText(std::make_shared<std::string>("You have 2 new messages"));
    content.SetContentSize(9000);  // the service measures the content it received
    PushBaseRsp size = Validate::ValidateRemoteNotificationContent(request, content);

    auto icon = std::make_shared<Kavo::Media::PixelMap>(32, 32, Kavo::Media::PixelFormat::RGBA_8888);  // 4 KiB
    content.SetOverlayIcon(icon);
    PushBaseRsp iconRsp = Validate::ValidateRemoteNotificationOverlayIcon(request, content);  // removes it
    Guide::Show("9000 bytes", size.GetErrDescription(), "Content size is 9000 over 8192");
    Guide::Show("its code", size.GetErrAsInt32(), int{PUSH_ERR_NOTIFICATION_CONTENT_INVALID});
    Guide::Show("a 4 KiB icon", iconRsp.GetErrDescription(), "Overlay icon size is 4096 over 2048");
    Guide::Show("icon kept", content.GetOverlayIcon() != nullptr, false);
    // end guide
    return Guide::ExitStatus();
}
