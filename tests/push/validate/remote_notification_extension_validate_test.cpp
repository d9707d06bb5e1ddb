#include "kavo/push/validate/remote_notification_extension_validate.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "kavo/host/log/log.h"
#include "kavo/push/validate/extension_service.h"
#include "kavo/push/validate/push_extension_validate.h"

namespace {

using namespace Kavo::Push;

RemoteNotificationRequest MakeRequest(int survival, int iconKib, int contentKib)
{
    return RemoteNotificationRequest(survival, iconKib, contentKib, RemoteNotificationInfo());
}

struct Expect {
    int err;
    int inner;
    std::string desc;
    std::vector<std::string> logs;
};

void ExpectResult(const PushBaseRsp& rsp, const Kavo::LogCapture& capture, const Expect& want, const char* name)
{
    EXPECT_EQ(rsp.GetErrAsInt32(), want.err) << name;
    EXPECT_EQ(rsp.GetInnerErr(), want.inner) << name;
    EXPECT_EQ(rsp.GetErrDescription(), want.desc) << name;
    EXPECT_EQ(capture.Texts(), want.logs) << name;
    for (const auto& line : capture.Lines()) {
        EXPECT_EQ(line.level, Kavo::LOG_ERROR) << name;
    }
}

TEST(SurvivalTimeRule, BoundsAreInclusive)
{
    struct Case {
        int value;
        bool valid;
    };
    const Case cases[] = {{1, true}, {21600, true}, {0, false}, {-1, false}, {21601, false}, {INT_MIN, false}};
    for (const auto& c : cases) {
        Kavo::LogCapture capture;
        PushBaseRsp rsp = PushExtensionValidate::ValidateSurvivalTime(c.value);
        std::string text = "survival time is invalid: " + std::to_string(c.value);
        Expect want = c.valid ? Expect{0, INT_MIN, "", {}} : Expect{401, INT_MIN, text, {text}};
        ExpectResult(rsp, capture, want, std::to_string(c.value).c_str());
    }
    PushExtensionInfo info(0, false, PushPayload());
    EXPECT_EQ(PushExtensionValidate::ValidatePushExtensionInfo(info).GetErrAsInt32(), 401);
}

TEST(RequestRules, FirstFailureWinsInOrder)
{
    struct Case {
        const char* name;
        int survival, icon, content;
        Expect want;
    };
    const Case cases[] = {
        {"all bounds at their upper edge", 21600, 250, 250, {0, INT_MIN, "", {}}},
        {"all bounds at their lower edge", 1, 1, 1, {0, INT_MIN, "", {}}},
        {"everything invalid reports only the survival time", 0, 0, 0,
         {401, INT_MIN, "survival time is invalid: 0", {"survival time is invalid: 0", "Validate Survival Time Fail"}}},
        {"icon limit 251", 30, 251, 10,
         {401, INT_MIN, "Overlay icon size is invalid: 251", {"Overlay icon size is invalid: 251"}}},
        {"icon limit 0", 30, 0, 10, {401, INT_MIN, "Overlay icon size is invalid: 0", {"Overlay icon size is invalid: 0"}}},
        {"content limit negative", 30, 250, -4,
         {401, INT_MIN, "Content size is invalid: -4", {"Content size is invalid: -4"}}},
        {"content limit 251", 30, 250, 251,
         {401, INT_MIN, "Content size is invalid: 251", {"Content size is invalid: 251"}}},
    };
    for (const auto& c : cases) {
        Kavo::LogCapture capture;
        PushBaseRsp rsp = RemoteNotificationExtensionValidate::ValidateRemoteNotificationRequest(
            MakeRequest(c.survival, c.icon, c.content));
        ExpectResult(rsp, capture, c.want, c.name);
    }
}

TEST(ContentRules, SizeIsComparedWithTheLimitInBytes)
{
    struct Case {
        const char* name;
        int limitKib;
        long size;
        Expect want;
    };
    const std::string over = "Content size is 307200 over 204800";
    const std::string wrapped = "Content size is 1 over -2147483648";
    const Case cases[] = {
        {"exactly the limit", 200, 204800, {0, INT_MIN, "", {}}},
        {"one byte over", 200, 204801,
         {1000900027, 100000036, "Content size is 204801 over 204800",
          {"remote notification content is invalid: Content size is 204801 over 204800"}}},
        {"the documented example", 200, 307200,
         {1000900027, 100000036, over, {"remote notification content is invalid: " + over}}},
        {"the limit wraps in 32 bits", 2097152, 1,
         {1000900027, 100000036, wrapped, {"remote notification content is invalid: " + wrapped}}},
        {"zero limit lets an empty content through", 0, 0, {0, INT_MIN, "", {}}},
    };
    for (const auto& c : cases) {
        RemoteNotificationContent content;
        content.SetContentSize(c.size);
        Kavo::LogCapture capture;
        PushBaseRsp rsp = RemoteNotificationExtensionValidate::ValidateRemoteNotificationContent(
            MakeRequest(30, 10, c.limitKib), content);
        ExpectResult(rsp, capture, c.want, c.name);
    }
}

TEST(OverlayIconRules, AnOversizedIconIsRemovedFromTheContent)
{
    using Kavo::Media::PixelFormat;
    using Kavo::Media::PixelMap;
    struct Case {
        const char* name;
        int limitKib;
        std::shared_ptr<PixelMap> icon;
        bool kept;
        Expect want;
    };
    auto exact = std::make_shared<PixelMap>(16, 16, PixelFormat::RGBA_8888);  // 1024 bytes
    auto bigger = std::make_shared<PixelMap>(257, 1, PixelFormat::RGBA_8888);  // 1028 bytes
    const std::string over = "Overlay icon size is 1028 over 1024";
    const Case cases[] = {
        {"no icon passes even a zero limit", 0, nullptr, true, {0, INT_MIN, "", {}}},
        {"icon of exactly the limit", 1, exact, true, {0, INT_MIN, "", {}}},
        {"icon over the limit", 1, bigger, false,
         {1000900027, 100000035, over, {"remote notification content is invalid: " + over}}},
    };
    for (const auto& c : cases) {
        RemoteNotificationContent content;
        content.SetOverlayIcon(c.icon);
        RemoteNotificationRequest request = MakeRequest(30, c.limitKib, 10);
        Kavo::LogCapture capture;
        PushBaseRsp rsp = RemoteNotificationExtensionValidate::ValidateRemoteNotificationOverlayIcon(request, content);
        ExpectResult(rsp, capture, c.want, c.name);
        EXPECT_EQ(content.GetOverlayIcon(), c.kept ? c.icon : nullptr) << c.name;
        EXPECT_EQ(request.GetOverlayIconSize(), c.limitKib) << "the request is never changed";
    }
}

TEST(ExtensionServiceTest, CallsOnlyTheLatestCallback)
{
    ExtensionService service;
    service.UnLoadService();  // nothing set: nothing happens
    int first = 0;
    int second = 0;
    service.SetUnLoadCallback([&first] { ++first; });
    service.SetUnLoadCallback([&second] { ++second; });
    service.UnLoadService();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

}  // namespace
