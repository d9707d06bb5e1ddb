#include "request/extension_result.h"

#include <unistd.h>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/host/media/pixel_map.h"
#include "kavo/host/want/want_params.h"

namespace KavoTool {

namespace {

using Kavo::Push::RemoteNotificationContent;
using Kavo::Push::RemoteNotificationRequest;
using Kavo::Push::RemoteNotificationResult;

constexpr int32_t NORMAL_ICON_SIDE = 16;     // 16 x 16 RGBA: 1 KiB
constexpr int32_t OVERSIZED_ICON_SIDE = 32;  // 32 x 32 RGBA: 4 KiB
constexpr size_t LONG_TEXT_BYTES = 9000;

std::shared_ptr<Kavo::Media::PixelMap> Icon(int32_t side)
{
    return std::make_shared<Kavo::Media::PixelMap>(side, side, Kavo::Media::PixelFormat::RGBA_8888);
}

}  // namespace

RemoteNotificationResult RenderResult(const RemoteNotificationRequest& request, ExtensionBehaviour behaviour,
                                      const std::string& app)
{
    RemoteNotificationContent content;
    content.SetTitle(std::make_shared<std::string>("New message"));
    std::string text = "You have mail: " + request.GetRemoteNotification().GetData();
    if (behaviour == ExtensionBehaviour::LONG_TEXT) {
        text.append(LONG_TEXT_BYTES, 'x');
    }
    content.SetText(std::make_shared<std::string>(text));
    content.SetBadgeNumber(std::make_shared<long>(1));
    content.SetOverlayIcon(Icon(behaviour == ExtensionBehaviour::BIG_ICON ? OVERSIZED_ICON_SIDE : NORMAL_ICON_SIDE));
    auto parameters = std::make_shared<Kavo::AAFwk::WantParams>();
    parameters->SetParam("extensionPid", static_cast<int32_t>(getpid()));
    parameters->SetParam("callingUid", Kavo::IPCSkeleton::GetCallingUid());
    if (!app.empty()) {
        parameters->SetParam("requestId", static_cast<int64_t>(request.GetRemoteNotification().GetId()));
        parameters->SetParam("app", app);
    }
    return RemoteNotificationResult(content, parameters);
}

}  // namespace KavoTool
