#include "kavo/host/device/device.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "kavo/host/account/os_account_manager.h"
#include "kavo/host/appmgr/iapp_mgr.h"
#include "kavo/host/bundle/ibundle_mgr.h"
#include "kavo/host/context/application_context.h"
#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/host/samgr/system_ability_manager.h"

namespace {

using namespace Kavo;
using namespace Kavo::AppExecFwk;
using Kavo::AccountSA::OsAccountManager;

const std::string MAIL = "com.example.mail";

sptr<IRemoteObject> Service(int32_t id)
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->GetSystemAbility(id);
}

sptr<IBundleMgr> Bms()
{
    return iface_cast<IBundleMgr>(Service(401));
}

int32_t ActiveIds(std::vector<int32_t>&& ids = {})
{
    return OsAccountManager::QueryActiveOsAccountIds(ids);
}

// Owner 100, unverified guest 101, inactive 102; the mail app and its clone 1 under 100 and 101.
class DeviceTest : public ::testing::Test {
protected:
    DeviceTest()
    {
        device_.AddAccount({100, true, true, true});
        device_.AddAccount({101, true, false, false});
        device_.AddAccount({102, false, false, false});
        Host::InstalledBundle mail{MAIL, 10042};
        mail.cloneIndexes = {1};
        mail.userIds = {100, 101};
        device_.InstallBundle(mail);
        device_.Activate();
    }

    Host::Device device_;
};

TEST_F(DeviceTest, UidsAndAccountsFollowTheInstalledState)
{
    struct Case {
        int32_t userId, appIndex, uid;
    };
    std::string name;
    int32_t appIndex = -1, localId = -1;
    for (const Case c : {Case{100, 0, 20010042}, {100, 1, 20010043}, {101, 0, 20210042}, {100, 2, -1}, {102, 0, -1}}) {
        EXPECT_EQ(Bms()->GetUidByBundleName(MAIL, c.userId, c.appIndex), c.uid);
        if (c.uid > 0) {
            EXPECT_EQ(Bms()->GetBundleNameAndCloneIndex(c.uid, name, appIndex), 0);
            EXPECT_EQ(OsAccountManager::GetOsAccountLocalIdFromUid(c.uid, localId), 0);
            EXPECT_EQ(std::make_tuple(name, appIndex, localId), std::make_tuple(MAIL, c.appIndex, c.userId));
        }
    }
    EXPECT_EQ(Bms()->GetNameForUid(20010099, name), BUNDLE_INVALID_UID);
    std::vector<int32_t> active{55};
    EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(active), 0);
    EXPECT_EQ(active, (std::vector<int32_t>{100, 101})) << "the list is cleared, then filled";
    bool verified = true;
    EXPECT_EQ(OsAccountManager::IsOsAccountVerified(101, verified), 0);
    EXPECT_FALSE(verified);
}

TEST_F(DeviceTest, ChosenCodesAbsentAndLateServices)
{
    for (bool once : {true, false}) {
        device_.SetReturnCode(200, "QueryActiveOsAccountIds", 77, once);
        std::vector<AccountSA::ForegroundOsAccount> other;  // another operation is unaffected
        EXPECT_EQ((std::vector<int32_t>{ActiveIds(), OsAccountManager::GetForegroundOsAccounts(other), ActiveIds()}),
                  (std::vector<int32_t>{77, 0, once ? 0 : 77}));
        device_.ClearReturnCodes();
        EXPECT_EQ(ActiveIds(), 0);
    }
    auto& samgr = SystemAbilityManagerClient::GetInstance();
    std::atomic<int> added{0};
    int handle = samgr.AddStatusListener([&added](int32_t id, bool up) { added += id == 200 && up; });
    device_.SetServiceAbsent(200);
    EXPECT_EQ(ActiveIds(), 4194321);
    device_.StartServiceAfter(200, std::chrono::milliseconds(30));
    EXPECT_EQ(ActiveIds(), 4194321) << "not yet";
    for (int i = 0; i < 200 && added.load() == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    samgr.RemoveStatusListener(handle);
    EXPECT_EQ(added.load(), 1);
    EXPECT_EQ(ActiveIds(), 0);
    device_.Deactivate();
    device_.StartServiceAfter(401, std::chrono::hours(1));
    device_.Activate();
    EXPECT_EQ(Bms(), nullptr) << "deactivation removed it; a late service is not there at activation";
}

TEST(DeviceRegistrationTest, IdentityInterfacesAndScope)
{
    {
        Host::Device device;
        device.SetProcessIdentity("com.kavo.push", 20010001);
        EXPECT_EQ(Service(401), nullptr) << "an inactive device registers nothing";
        device.Activate();
        EXPECT_EQ(iface_cast<IAppMgr>(Service(401)), nullptr) << "the descriptor is checked";
        auto context = AbilityRuntime::Context::GetApplicationContext();
        EXPECT_EQ(context ? context->GetBundleName() : "", "com.kavo.push");
        EXPECT_EQ(IPCSkeleton::GetCallingUid(), 20010001) << "no call served: the process's own uid";
        IPCSkeleton::SetCallingUid(20010042);
        int32_t otherThread = 0;
        std::thread([&otherThread] { otherThread = IPCSkeleton::GetCallingUid(); }).join();
        EXPECT_EQ(std::make_pair(IPCSkeleton::GetCallingUid(), otherThread), std::make_pair(20010042, 20010001));
        IPCSkeleton::ResetCallingUid();
    }
    EXPECT_EQ(AbilityRuntime::Context::GetApplicationContext(), nullptr);
    EXPECT_EQ(ActiveIds(), 4194321) << "the device's scope ended";
}

}  // namespace
