#include "demo_device.h"

#include "kavo/host/samgr/system_ability_manager.h"
#include "kavo/push/common/system_ability_status_service.h"

namespace KavoTool {

namespace {

using Kavo::AppExecFwk::AppProcessState;
using Kavo::AppExecFwk::ExtensionAbilityType;
using Kavo::Push::SystemAbilityStatusService;
using std::chrono::milliseconds;

constexpr milliseconds ON_TIME{0};
constexpr milliseconds LATE{150};

const char* const BEHAVIOUR_NAMES[] = {"answer", "crash", "hang", "garbage", "big-icon", "long-text"};

}  // namespace

const char* BehaviourName(ExtensionBehaviour behaviour)
{
    return BEHAVIOUR_NAMES[static_cast<int>(behaviour)];
}

bool ParseBehaviour(const std::string& name, ExtensionBehaviour& behaviour)
{
    for (int i = 0; i < static_cast<int>(std::size(BEHAVIOUR_NAMES)); ++i) {
        if (name == BEHAVIOUR_NAMES[i]) {
            behaviour = static_cast<ExtensionBehaviour>(i);
            return true;
        }
    }
    return false;
}

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
    using Status = SystemAbilityStatusService;
    // The service's owner tracks readiness from the registry's announcements.
    Status::SetStatus(Status::ANCHOR_ABILITY_ID, Status::STARTED);
    listener_ = Kavo::SystemAbilityManagerClient::GetInstance().AddStatusListener(
        [](int32_t id, bool up) { Status::SetStatus(id, up ? Status::STARTED : Status::STOPPED); });

    device_.AddAccount({DemoApp::USER, true, true, true});
    Kavo::Host::InstalledBundle mail(DemoApp::BUNDLE, DemoApp::APP_ID);
    if (scenario.extensionInstalled) {
        Kavo::AppExecFwk::ExtensionAbilityInfo extension;
        extension.name = DemoApp::EXTENSION;
        extension.bundleName = DemoApp::BUNDLE;
        extension.type = ExtensionAbilityType::REMOTE_NOTIFICATION;
        mail.extensions = {extension};
    }
    device_.InstallBundle(mail);
    device_.StartProcess({DemoApp::BUNDLE, DemoApp::USER, 0, DemoApp::MAIN_PID, AppProcessState::BACKGROUND});
    device_.SetProcessIdentity("com.kavo.push", DemoApp::USER * 200000 + 3100);
    if (scenario.accountServiceDelay > ON_TIME) {
        Status::SetStatus(Kavo::Host::Device::ACCOUNT_SERVICE, Status::STOPPED);
        device_.StartServiceAfter(Kavo::Host::Device::ACCOUNT_SERVICE, scenario.accountServiceDelay);
    }
    device_.Activate();
    device_.SetCallingUid(device_.UidOf(DemoApp::BUNDLE, DemoApp::USER));
}

DemoDevice::~DemoDevice()
{
    device_.Deactivate();
    Kavo::SystemAbilityManagerClient::GetInstance().RemoveStatusListener(listener_);
}

}  // namespace KavoTool
