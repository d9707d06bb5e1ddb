#include "kavo/push/validate/remote_notification_extension_validate.h"

#include <cstdint>
#include <string>

#include "kavo/push/common/push_log.h"
#include "kavo/push/validate/push_extension_validate.h"

namespace Kavo::Push {

namespace {

constexpr int KIB_SHIFT = 10;

bool InSizeRange(int kib)
{
    return kib >= RemoteNotificationExtensionValidate::MIN_SIZE_KIB &&
           kib <= RemoteNotificationExtensionValidate::MAX_SIZE_KIB;
}

// KiB to bytes as the device computes it: a 32-bit shift that wraps rather than widens.
int32_t KibToBytes(int kib)
{
    return static_cast<int32_t>(static_cast<uint32_t>(kib) << KIB_SHIFT);
}

PushBaseRsp ContentInvalid(PushInnerError inner, const std::string& text)
{
    PUSH_LOGE("remote notification content is invalid: %{public}s", text.c_str());
    return PushBaseRsp(PUSH_ERR_NOTIFICATION_CONTENT_INVALID, inner, text);
}

}  // namespace

PushBaseRsp
RemoteNotificationExtensionValidate::ValidateRemoteNotificationRequest(const RemoteNotificationRequest& request)
{
    PushBaseRsp rsp = PushExtensionValidate::ValidateSurvivalTime(request.GetSurvivalTime());
    if (!rsp.Succeed()) {
        PUSH_LOGE("Validate Survival Time Fail");
        return rsp;
    }
    int iconSize = request.GetOverlayIconSize();
    if (!InSizeRange(iconSize)) {
        PUSH_LOGE("Overlay icon size is invalid: %{public}d", iconSize);
        return PushBaseRsp(PUSH_ERR_INVALID_PARAM, "Overlay icon size is invalid: %d", iconSize);
    }
    int contentSize = request.GetContentSize();
    if (!InSizeRange(contentSize)) {
        PUSH_LOGE("Content size is invalid: %{public}d", contentSize);
        return PushBaseRsp(PUSH_ERR_INVALID_PARAM, "Content size is invalid: %d", contentSize);
    }
    return PushBaseRsp();
}

PushBaseRsp
RemoteNotificationExtensionValidate::ValidateRemoteNotificationContent(const RemoteNotificationRequest& request,
                                                                       const RemoteNotificationContent& content)
{
    int64_t actual = content.GetContentSize();
    int32_t limit = KibToBytes(request.GetContentSize());
    if (actual <= static_cast<int64_t>(limit)) {
        return PushBaseRsp();
    }
    return ContentInvalid(INNER_ERR_NOTIFICATION_CONTENT_INVALID,
                          "Content size is " + std::to_string(actual) + " over " + std::to_string(limit));
}

PushBaseRsp
RemoteNotificationExtensionValidate::ValidateRemoteNotificationOverlayIcon(const RemoteNotificationRequest& request,
                                                                           RemoteNotificationContent& content)
{
    // The local copy keeps the image alive after it is removed from the content.
    std::shared_ptr<Media::PixelMap> icon = content.GetOverlayIcon();
    if (icon == nullptr) {
        return PushBaseRsp();
    }
    int32_t bytes = icon->GetByteCount();
    int32_t limit = KibToBytes(request.GetOverlayIconSize());
    if (bytes <= limit) {
        return PushBaseRsp();
    }
    content.SetOverlayIcon(nullptr);
    return ContentInvalid(INNER_ERR_OVERLAY_ICON_INVALID,
                          "Overlay icon size is " + std::to_string(bytes) + " over " + std::to_string(limit));
}

}  // namespace Kavo::Push
