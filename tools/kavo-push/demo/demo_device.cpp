#include "demo/demo_device.h"

#include "kavo/push/common/system_ability_status_service.h"

namespace KavoTool {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds ON_TIME{0};
constexpr milliseconds LATE{150};
constexpr int32_t MAIL_MAIN_PID = 3001;

}  // namespace

const std::vector<DemoScenario>& DemoScenarios()
{
    using B = ExtensionBehaviour;
    static const std::vector<DemoScenario> scenarios = {
        {"default", "the typical request: the extension answers, the result is returned", 5, 2, 8, true, ON_TIME,
         B::ANSWER},
        {"bad-survival-time", "the request asks for a survival time of 0 seconds", 0, 2, 8, true, ON_TIME, B::ANSWER},
        {"missing-extension", "the application has no remote-notification extension", 5, 2, 8, false, ON_TIME,
         B::ANSWER},
        {"account-service-late", "the account service comes up 150 ms late; the account query waits for it", 5, 2, 8,
         true, LATE, B::ANSWER},
        {"oversized-content", "the extension's content is over the request's 8 KiB limit", 5, 2, 8, true, ON_TIME,
         B::LONG_TEXT},
        {"oversized-icon", "the extension's overlay icon is over the request's 2 KiB limit", 5, 2, 8, true, ON_TIME,
         B::BIG_ICON},
        {"extension-crash", "the extension process aborts while serving the request", 5, 2, 8, true, ON_TIME, B::CRASH},
        {"extension-timeout", "the extension does not answer within the 1 second survival time", 1, 2, 8, true, ON_TIME,
         B::HANG},
        {"extension-garbage", "the extension answers bytes that are not a result", 5, 2, 8, true, ON_TIME, B::GARBAGE},
    };
    return scenarios;
}

const DemoScenario* FindDemoScenario(const std::string& name)
{
    for (const auto& scenario : DemoScenarios()) {
        if (name == scenario.name) {
            return &scenario;
        }
    }
    return nullptr;
}

DemoDevice::DemoDevice(const DemoScenario& scenario)
{
    using Status = Kavo::Push::SystemAbilityStatusService;
    const PushApp mail = PushApps(0).front();
    InstallPushApp(device_, mail, scenario.extensionInstalled, MAIL_MAIN_PID);
    if (scenario.accountServiceDelay > ON_TIME) {
        Status::SetStatus(Kavo::Host::Device::ACCOUNT_SERVICE, Status::STOPPED);
        device_.StartServiceAfter(Kavo::Host::Device::ACCOUNT_SERVICE, scenario.accountServiceDelay);
    }
    ActivateServiceDevice(device_);
    device_.SetCallingUid(device_.UidOf(mail.bundle, PUSH_APP_USER));
}

DemoDevice::~DemoDevice()
{
    device_.Deactivate();
}

}  // namespace KavoTool
