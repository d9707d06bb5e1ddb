#include "request/app_device.h"

#include <grp.h>
#include <unistd.h>

#include "kavo/host/samgr/system_ability_manager.h"
#include "kavo/push/common/system_ability_status_service.h"

namespace KavoTool {

namespace {

using Kavo::AppExecFwk::AppProcessState;
using Kavo::AppExecFwk::ExtensionAbilityType;
using Kavo::Push::SystemAbilityStatusService;

constexpr int32_t FIRST_EXTRA_APP_ID = 10100;
constexpr int32_t SERVICE_UID = PUSH_APP_USER * 200000 + 3100;

}  // namespace

std::vector<PushApp> PushApps(int extra)
{
    std::vector<PushApp> apps = {{"com.example.mail", "MailNotificationExtension", 10042}};
    for (int i = 1; i <= extra; ++i) {
        apps.push_back({"com.example.app" + std::to_string(i), "NotificationExtension", FIRST_EXTRA_APP_ID + i});
    }
    return apps;
}

bool FindPushApp(const std::string& bundle, PushApp& app)
{
    const std::string prefix = "com.example.app";
    std::vector<PushApp> apps = PushApps(0);
    if (bundle.compare(0, prefix.size(), prefix) == 0 && bundle.size() > prefix.size() &&
        bundle.size() <= prefix.size() + 4 && bundle[prefix.size()] != '0' &&
        bundle.find_first_not_of("0123456789", prefix.size()) == std::string::npos) {
        apps = PushApps(std::stoi(bundle.substr(prefix.size())));
    }
    if (apps.back().bundle != bundle && apps.front().bundle != bundle) {
        return false;
    }
    app = apps.back().bundle == bundle ? apps.back() : apps.front();
    return true;
}

int32_t PushAppUid(const PushApp& app)
{
    return PUSH_APP_USER * 200000 + app.appId;
}

bool BecomeUid(int32_t uid)
{
    return setgroups(0, nullptr) == 0 && setgid(static_cast<gid_t>(uid)) == 0 && setuid(static_cast<uid_t>(uid)) == 0;
}

void InstallPushApp(Kavo::Host::Device& device, const PushApp& app, bool withExtension, int32_t mainPid)
{
    Kavo::Host::InstalledBundle bundle(app.bundle, app.appId);
    if (withExtension) {
        Kavo::AppExecFwk::ExtensionAbilityInfo extension;
        extension.name = app.extension;
        extension.bundleName = app.bundle;
        extension.type = ExtensionAbilityType::REMOTE_NOTIFICATION;
        bundle.extensions = {extension};
    }
    device.InstallBundle(bundle);
    device.StartProcess({app.bundle, PUSH_APP_USER, 0, mainPid, AppProcessState::BACKGROUND});
}

void ActivateServiceDevice(Kavo::Host::Device& device)
{
    device.AddAccount({PUSH_APP_USER, true, true, true});
    device.SetProcessIdentity("com.kavo.push", SERVICE_UID);
    device.Activate();
}

ServiceReadiness::ServiceReadiness()
{
    using Status = SystemAbilityStatusService;
    // The service's owner tracks readiness from the registry's announcements.
    Status::SetStatus(Status::ANCHOR_ABILITY_ID, Status::STARTED);
    listener_ = Kavo::SystemAbilityManagerClient::GetInstance().AddStatusListener(
        [](int32_t id, bool up) { Status::SetStatus(id, up ? Status::STARTED : Status::STOPPED); });
}

ServiceReadiness::~ServiceReadiness()
{
    Kavo::SystemAbilityManagerClient::GetInstance().RemoveStatusListener(listener_);
}

}  // namespace KavoTool
