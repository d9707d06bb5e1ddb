#include "kavo/push/validate/remote_notification_extension_validate.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "kavo/host/log/log.h"

namespace {

using namespace Kavo::Push;
using Kavo::Media::PixelMap;
using Texts = std::vector<std::string>;
using Validate = RemoteNotificationExtensionValidate;

void ExpectResult(const PushBaseRsp& rsp, const Kavo::LogCapture& log, int err, int inner, const std::string& desc,
                  const Texts& logs)
{
    EXPECT_EQ(rsp.GetErrAsInt32(), err);
    EXPECT_EQ(rsp.GetInnerErr(), inner);
    EXPECT_EQ(rsp.GetErrDescription(), desc);
    EXPECT_EQ(log.Texts(), logs);
    EXPECT_EQ(log.Lines().empty() ? Kavo::LEVEL_ERROR : log.Lines().back().level, Kavo::LEVEL_ERROR);
}

// Survival time, then the overlay-icon limit, then the content limit.
TEST(RequestRules, BoundsAreInclusiveAndTheFirstFailureWins)
{
    struct Case {
        const char* name;
        int survival, icon, content;
        Texts logs;  // empty: valid
    };
    const Case cases[] = {
        {"every upper bound", 21600, 250, 250, {}},
        {"every lower bound", 1, 1, 1, {}},
        {"all invalid", 0, 0, 0, {"survival time is invalid: 0", "Validate Survival Time Fail"}},
        {"survival past 21600", 21601, 1, 1, {"survival time is invalid: 21601", "Validate Survival Time Fail"}},
        {"icon past 250", 30, 251, 0, {"Overlay icon size is invalid: 251"}},
        {"icon 0", 30, 0, 1, {"Overlay icon size is invalid: 0"}},
        {"content past 250", 30, 250, 251, {"Content size is invalid: 251"}},
        {"content 0", 30, 250, 0, {"Content size is invalid: 0"}},
        {"negative content", 30, 250, INT_MIN, {"Content size is invalid: -2147483648"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Kavo::LogCapture log;
        PushBaseRsp rsp = Validate::ValidateRemoteNotificationRequest(
            RemoteNotificationRequest(c.survival, c.icon, c.content, RemoteNotificationInfo()));
        ExpectResult(rsp, log, c.logs.empty() ? 0 : 401, INT_MIN, c.logs.empty() ? "" : c.logs[0], c.logs);
    }
}

// Limits are KiB, turned into bytes in 32 bits; an oversized icon is taken out of the content.
TEST(ContentRules, SizesAreComparedWithTheLimitsInBytes)
{
    struct Case {
        const char* name;
        bool icon;                   // checks an overlay icon of `bytes` bytes (none when 0), not the content size
        int limitKib, bytes, inner;  // inner 0: valid
        std::string desc;
    };
    const Case cases[] = {
        {"content of exactly the limit", false, 200, 204800, 0, ""},
        {"content one byte over", false, 200, 204801, 100000036, "Content size is 204801 over 204800"},
        {"the content limit wraps in 32 bits", false, 2097152, 1, 100000036, "Content size is 1 over -2147483648"},
        {"no icon passes even a zero limit", true, 0, 0, 0, ""},
        {"an icon of exactly the limit", true, 1, 1024, 0, ""},
        {"an icon one pixel over", true, 1, 1028, 100000035, "Overlay icon size is 1028 over 1024"},
        {"the icon limit wraps in 32 bits", true, 2097152, 4, 100000035, "Overlay icon size is 4 over -2147483648"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RemoteNotificationRequest request(30, c.limitKib, c.limitKib, RemoteNotificationInfo());
        auto icon = c.bytes ? std::make_shared<PixelMap>(c.bytes / 4, 1, Kavo::Media::PixelFormat::RGBA_8888) : nullptr;
        RemoteNotificationContent content;
        content.SetContentSize(c.bytes);
        content.SetOverlayIcon(icon);
        Kavo::LogCapture log;
        PushBaseRsp rsp = c.icon ? Validate::ValidateRemoteNotificationOverlayIcon(request, content)
                                 : Validate::ValidateRemoteNotificationContent(request, content);
        ExpectResult(rsp, log, c.inner ? 1000900027 : 0, c.inner ? c.inner : INT_MIN, c.desc,
                     c.inner ? Texts{"remote notification content is invalid: " + c.desc} : Texts{});
        EXPECT_EQ(content.GetOverlayIcon(), c.icon && c.inner ? nullptr : icon);
    }
}

}  // namespace
