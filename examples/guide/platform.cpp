// Platform queries on the simulated device: who is calling, which accounts are in the
// foreground, and a query that meets an account service still starting and waits for it.
#include <chrono>

#include <kavo/host/device/device.h>
#include <kavo/host/samgr/system_ability_manager.h>
#include <kavo/push/common/base_util.h>
#include <kavo/push/common/system_ability_status_service.h>
#include <kavo/push/platform/push_account_helper.h>
#include <kavo/push/platform/push_bundle_helper.h>

#include "show.h"

using namespace Kavo::Push;
using Kavo::Host::Device;
using Status = SystemAbilityStatusService;

int main()
{
    // guide: device
    Device device;
    device.AddAccount({100, true, true, true});  // id, active, foreground, verified
    device.InstallBundle({"com.example.mail", 10042});
    device.Activate();  // the account, package, application and time services are registered
    device.SetCallingUid(device.UidOf("com.example.mail", 100));  // this thread serves the app's call

    ClientUserInfo caller;
    PushBaseRsp rsp = PushBundleHelper::GetIpcClientUserInfo(caller);
    std::vector<int> accounts;
    PushAccountHelper::GetForegroundOsAccounts(accounts);
    Guide::Show("caller",
                caller.bundleName + " uid " + std::to_string(caller.uid) + " account " + std::to_string(caller.userId),
                "com.example.mail uid 20010042 account 100");
    Guide::Show("foreground accounts", accounts.size() == 1 ? accounts[0] : -1, 100);
    // end guide

    // guide: wait
    // The service's owner keeps the readiness registry from the service manager's announcements.
    Status::SetStatus(Status::ANCHOR_ABILITY_ID, Status::STARTED);
    auto& manager = Kavo::SystemAbilityManagerClient::GetInstance();
    int listener = manager.AddStatusListener(
        [](int32_t id, bool up) { Status::SetStatus(id, up ? Status::STARTED : Status::STOPPED); });
    Status::SetStatus(Device::ACCOUNT_SERVICE, Status::STOPPED);
    device.StartServiceAfter(Device::ACCOUNT_SERVICE, std::chrono::milliseconds(150));

    int localId = -1;
    rsp = PushAccountHelper::GetForegroundOsAccountLocalId(localId);  // waits, then asks again
    manager.RemoveStatusListener(listener);
    Guide::Show("answered once the service came up", rsp.Succeed(), true);
    Guide::Show("foreground account", localId, 100);
    // end guide

    // guide: blind-retry
    int attempts = 0;
    rsp = BaseUtil::DoSystemAbilityApiCallWithRetry(
        [&attempts] { return ++attempts < 3 ? PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL) : PushBaseRsp(); }, 3, 10);
    Guide::Show("blind retry", std::to_string(attempts) + " attempts, " + (rsp.Succeed() ? "success" : "failure"),
                "3 attempts, success");
    // end guide
    return Guide::ExitStatus();
}
