// The simulated device as its services answer through the platform clients: uids and clones,
// processes, accounts, and the control surface (chosen codes, absent and late services).
#include "kavo/host/device/device.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
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
using Kavo::Host::Device;

const std::string MAIL = "com.example.mail";

sptr<IBundleMgr> Bms()
{
    return iface_cast<IBundleMgr>(
        SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->GetSystemAbility(401));
}

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

    Device device_;
};

TEST_F(DeviceTest, UidsFollowAccountAppIdAndClone)
{
    struct Case {
        const char* name;
        int32_t userId;
        int32_t appIndex;
        int32_t uid;
    };
    const Case cases[] = {
        {"main application of account 100", 100, 0, 20010042},
        {"its clone", 100, 1, 20010043},
        {"account 101", 101, 0, 20210042},
        {"a clone that does not exist", 100, 2, -1},
        {"an account it is not installed for", 102, 0, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Bms()->GetUidByBundleName(MAIL, c.userId, c.appIndex), c.uid);
        if (c.uid < 0) {
            continue;
        }
        std::string name;
        int32_t appIndex = -1;
        EXPECT_EQ(Bms()->GetNameAndIndexForUid(c.uid, name, appIndex), 0);
        EXPECT_EQ(name, MAIL);
        EXPECT_EQ(appIndex, c.appIndex);
        int32_t localId = -1;
        EXPECT_EQ(OsAccountManager::GetOsAccountLocalIdFromUid(c.uid, localId), 0);
        EXPECT_EQ(localId, c.userId);
    }
    EXPECT_EQ(Bms()->GetUidByBundleName("com.example.none", 100, 0), -1);
    std::string name;
    EXPECT_EQ(Bms()->GetNameForUid(20010099, name), ERR_BUNDLE_MANAGER_INVALID_UID);
}

TEST_F(DeviceTest, AccountsAnswerByTheirFlags)
{
    std::vector<int32_t> active{55};
    EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(active), 0);
    EXPECT_EQ(active, (std::vector<int32_t>{100, 101})) << "the list is cleared, then filled";
    int32_t foreground = -1;
    EXPECT_EQ(OsAccountManager::GetForegroundOsAccountLocalId(foreground), 0);
    EXPECT_EQ(foreground, 100);
    bool verified = true;
    EXPECT_EQ(OsAccountManager::IsOsAccountVerified(101, verified), 0);
    EXPECT_FALSE(verified);
    EXPECT_NE(OsAccountManager::IsOsAccountVerified(7, verified), 0);
    AccountSA::KavoAccountInfo owner;
    EXPECT_EQ(AccountSA::KavoAccountKits::GetInstance().GetKavoAccountInfo(owner), 0);
    EXPECT_EQ(owner.uid, "kavoAnonymousUid");
}

TEST_F(DeviceTest, ChosenCodesAnswerOnceOrUntilCleared)
{
    struct Case {
        const char* name;
        bool once;
        int32_t second;
    };
    const Case cases[] = {{"once", true, 0}, {"until cleared", false, 77}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        device_.SetReturnCode(200, "QueryActiveOsAccountIds", 77, c.once);
        std::vector<int32_t> ids;
        EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), 77);
        EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), c.second);
        std::vector<AccountSA::ForegroundOsAccount> foreground;
        EXPECT_EQ(OsAccountManager::GetForegroundOsAccounts(foreground), 0) << "other operations are unaffected";
        device_.ClearReturnCodes();
        EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), 0);
    }
    device_.SetReturnCode(401, "GetApplicationInfo", 1);
    ApplicationInfo app;
    EXPECT_FALSE(Bms()->GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, 100, app)) << "booleans answer false";
    EXPECT_TRUE(Bms()->GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, 100, app));
}

TEST_F(DeviceTest, AbsentAndLateServices)
{
    auto& samgr = SystemAbilityManagerClient::GetInstance();
    std::atomic<int> added{0};
    int handle = samgr.AddStatusListener([&added](int32_t id, bool up) {
        if (id == 200 && up) {
            added++;
        }
    });
    device_.SetServiceAbsent(200);
    std::vector<int32_t> ids;
    EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), 4194321);
    device_.StartServiceAfter(200, std::chrono::milliseconds(30));
    EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), 4194321) << "not yet";
    for (int i = 0; i < 200 && added.load() == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(added.load(), 1);
    EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), 0);
    samgr.RemoveStatusListener(handle);

    device_.Deactivate();
    EXPECT_EQ(Bms(), nullptr) << "deactivation removes every service";
    device_.StartServiceAfter(401, std::chrono::hours(1));
    device_.Activate();
    EXPECT_EQ(Bms(), nullptr) << "a late service is not there at activation";
}

TEST(DeviceIdentityTest, ProcessIdentityLastsWhileActiveAndCallingUidIsPerThread)
{
    {
        Device device;
        device.SetProcessIdentity("com.kavo.push", 20010001);
        device.Activate();
        auto context = AbilityRuntime::Context::GetApplicationContext();
        ASSERT_NE(context, nullptr);
        EXPECT_EQ(context->GetBundleName(), "com.kavo.push");
        EXPECT_EQ(IPCSkeleton::GetCallingUid(), 20010001) << "no call served: the process's own uid";
        IPCSkeleton::SetCallingUid(20010042);
        int32_t otherThread = 0;
        std::thread([&otherThread] { otherThread = IPCSkeleton::GetCallingUid(); }).join();
        EXPECT_EQ(IPCSkeleton::GetCallingUid(), 20010042);
        EXPECT_EQ(otherThread, 20010001);
        IPCSkeleton::ResetCallingUid();
    }
    EXPECT_EQ(AbilityRuntime::Context::GetApplicationContext(), nullptr);
    std::vector<int32_t> ids;
    EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), 4194321) << "the device's scope ended";
}

TEST(RemoteObjectTest, InterfaceCastChecksTheDescriptor)
{
    Device device;
    sptr<IRemoteObject> remote =
        SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->GetSystemAbility(401);
    EXPECT_EQ(remote, nullptr) << "an inactive device registers nothing";
    device.Activate();
    remote = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->GetSystemAbility(401);
    EXPECT_NE(iface_cast<IBundleMgr>(remote), nullptr);
    EXPECT_EQ(iface_cast<IAppMgr>(remote), nullptr);
    EXPECT_EQ(iface_cast<IBundleMgr>(nullptr), nullptr);
    SystemAbilityManagerClient::GetInstance().SetManagerAvailable(false);
    EXPECT_EQ(SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager(), nullptr);
    std::vector<int32_t> ids;
    EXPECT_EQ(OsAccountManager::QueryActiveOsAccountIds(ids), 4194321);
    SystemAbilityManagerClient::GetInstance().SetManagerAvailable(true);
}

}  // namespace
