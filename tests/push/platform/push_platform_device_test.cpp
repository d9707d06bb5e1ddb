// The platform queries on a realistic simulated device: answers read from its state, the codes
// its services are told to answer, a service that comes up late, and real timers.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

#include "kavo/host/device/device.h"
#include "kavo/push/platform/push_account_helper.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "kavo/push/platform/push_distribute_account_helper.h"
#include "kavo/push/platform/push_timer_helper.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Host::Device;
using Kavo::Push::ClientUserInfo;
using Kavo::Push::ProcessInfo;
using Kavo::Push::PushAccountHelper;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using Kavo::Push::PushDistributeAccountHelper;
using Kavo::Push::PushTimerHelper;
using Kavo::Push::PushTimerInfo;
using S = AppProcessState;
using T = ExtensionAbilityType;
using Status = Kavo::Push::SystemAbilityStatusService;

const std::string MAIL = "com.example.mail";
const std::string BROWSER = "com.example.browser";
constexpr int USER = 100;

// A phone with a foreground owner (100), a guest (101), a mail app with a clone and a push
// extension, and a browser; the push service itself runs as a system process of account 100.
class DeviceQueryTest : public ::testing::Test {
protected:
    DeviceQueryTest()
    {
        device_.AddAccount({USER, true, true, true});
        device_.AddAccount({101, true, false, false});
        Kavo::Host::InstalledBundle mail(MAIL, 10042);
        mail.cloneIndexes = {1};
        mail.gwpAsanEnabled = true;
        mail.abilities = {Ability("MainAbility", {Want::ACTION_HOME}, {Want::ENTITY_HOME}, {})};
        mail.extensions = {Extension("Notify", T::REMOTE_NOTIFICATION, 0), Extension("Push", T::PUSH, 0),
                           Extension("Push", T::PUSH, 1)};
        device_.InstallBundle(mail);
        Kavo::Host::InstalledBundle browser(BROWSER, 10050);
        browser.isSystemApp = true;
        browser.abilities = {
            Ability("Viewer", {"kavo.want.action.viewData"}, {"entity.system.browsable"}, {"https://", "http://"})};
        device_.InstallBundle(browser);
        device_.StartProcess({MAIL, USER, 0, 3001, S::APP_STATE_BACKGROUND});
        device_.StartProcess(
            {MAIL, USER, 0, 3002, S::APP_STATE_FOREGROUND, ProcessType::EXTENSION, T::REMOTE_NOTIFICATION});
        device_.StartProcess({MAIL, USER, 1, 3003, S::APP_STATE_READY, ProcessType::EXTENSION, T::PUSH});
        device_.SetProcessIdentity("com.kavo.push", USER * 200000 + 3100);
        device_.Activate();
    }

    static AbilityInfo Ability(const std::string& name, std::vector<std::string> actions,
                               std::vector<std::string> entities, std::vector<std::string> uris)
    {
        AbilityInfo info;
        info.name = name;
        info.actions = std::move(actions);
        info.entities = std::move(entities);
        info.uris = std::move(uris);
        return info;
    }

    static ExtensionAbilityInfo Extension(const std::string& name, T type, int appIndex)
    {
        ExtensionAbilityInfo info;
        info.name = name;
        info.type = type;
        info.appIndex = appIndex;
        return info;
    }

    ScopedReadiness readiness_;
    EventRecorder events_;
    Device device_;
};

TEST_F(DeviceQueryTest, PackageAndProcessQueriesReadTheDevice)
{
    device_.SetCallingUid(device_.UidOf(MAIL, USER, 1));
    ClientUserInfo caller;
    ASSERT_TRUE(PushBundleHelper::GetIpcClientUserInfo(caller).Succeed());
    EXPECT_EQ(caller.bundleName, MAIL);
    EXPECT_EQ(caller.userId, USER);
    EXPECT_EQ(caller.appIndex, 1);
    EXPECT_EQ(caller.uid, 20010043);

    Want want;
    want.SetBundle(MAIL);
    EXPECT_EQ(PushBundleHelper::ExtensionExist(want, USER, T::PUSH, 1).GetErr(), 0) << "the clone's own push";
    EXPECT_EQ(PushBundleHelper::ExtensionExist(want, USER, T::PUSH, 0).GetErr(), 1000900002)
        << "the main app's first extension is the notification one";
    EXPECT_TRUE(PushBundleHelper::IsBrowserAvailable().Succeed());
    EXPECT_TRUE(PushBundleHelper::IsSystemApp(BROWSER, USER));
    AbilityInfo main;
    EXPECT_TRUE(PushBundleHelper::GetMainAbility(MAIL, USER, main).Succeed());
    EXPECT_EQ(main.name, "MainAbility");
    int uid = 0;
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9(MAIL, USER, uid).second, 1);
    EXPECT_EQ(uid, 20010042);
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9("com.example.none", USER, uid).second, 0);

    int pid = 0;
    bool foreground = false;
    ClientUserInfo mainApp{MAIL, USER, 0, 20010042};
    EXPECT_TRUE(PushBundleHelper::IsRemoteForegrounding(mainApp, pid, foreground, false).Succeed());
    EXPECT_TRUE(foreground) << "its notification extension is in the foreground";
    EXPECT_EQ(pid, 3002);
    EXPECT_TRUE(PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, 20010043, pid).Succeed());
    EXPECT_EQ(pid, 3003);
    int state = 0;
    unsigned char flags = 0;
    EXPECT_TRUE(PushBundleHelper::GetAppProcessState(ProcessInfo{MAIL, USER, 1, "push"}, state, flags).Succeed());
    EXPECT_EQ(state, 1);
    EXPECT_EQ(flags, 4);
    bool running = false;
    EXPECT_TRUE(PushBundleHelper::IsAppRunning(BROWSER, USER, running, 0).Succeed());
    EXPECT_FALSE(running);
}

TEST_F(DeviceQueryTest, AccountQueriesReadTheDevice)
{
    std::vector<int> active;
    EXPECT_TRUE(PushAccountHelper::QueryActiveOsAccountIds(active).Succeed());
    EXPECT_EQ(active, (std::vector<int>{100, 101}));
    bool verified = false;
    EXPECT_TRUE(PushAccountHelper::IsOsAccountVerified(verified).Succeed());
    EXPECT_TRUE(verified);
    int account = -1;
    EXPECT_TRUE(PushBundleHelper::GetCurrAccountId(account).Succeed());
    EXPECT_EQ(account, USER);
    std::string bundle;
    EXPECT_TRUE(PushBundleHelper::GetCurrBundle(bundle).Succeed());
    EXPECT_EQ(bundle, "com.kavo.push");

    std::string id = "none";
    EXPECT_EQ(PushDistributeAccountHelper::GetOsDistributedId(id).GetErrDescription(), "Os account id not login");
    device_.SetDistributedAccount("5500123");
    EXPECT_TRUE(PushDistributeAccountHelper::GetOsDistributedId(id).Succeed());
    EXPECT_EQ(id, "5500123");
    EXPECT_TRUE(events_.Events().empty());
}

// The remaining queries, each answered from the device's state.
TEST_F(DeviceQueryTest, EveryOtherQuerySucceedsWithTheDevicesAnswer)
{
    struct Case {
        const char* name;
        std::function<PushBaseRsp(std::string& shown)> act;
        std::string expected;
    };
    auto want = [] {
        Want w;
        w.SetBundle(MAIL);
        return w;
    };
    const Case cases[] = {
        {"typed extension query",
         [&](std::string& shown) {
             std::vector<ExtensionAbilityInfo> infos;
             PushBaseRsp rsp = PushBundleHelper::QueryExtensionAbilityInfos(want(), T::PUSH, 0, USER, infos);
             shown = std::to_string(infos.size()) + " " + std::to_string(infos.at(1).uid);
             return rsp;
         },
         "2 20010043"},
        {"one ability by want",
         [](std::string& shown) {
             AbilityInfo info;
             Want w;
             w.SetUri("https://example.com");
             PushBaseRsp rsp = PushBundleHelper::QueryAbilityInfo(w, 0, USER, info);
             shown = info.bundleName + "/" + info.name;
             return rsp;
         },
         BROWSER + "/Viewer"},
        {"ability by action",
         [](std::string& shown) {
             AbilityInfo info;
             PushBaseRsp rsp = PushBundleHelper::GetAbilityByAction(BROWSER, "kavo.want.action.viewData", USER, info);
             shown = info.name;
             return rsp;
         },
         "Viewer"},
        {"ability by uri",
         [](std::string& shown) {
             AbilityInfo info;
             PushBaseRsp rsp = PushBundleHelper::GetAbilityByUri(BROWSER, "http://a", USER, info);
             shown = info.name;
             return rsp;
         },
         "Viewer"},
        {"ability by name",
         [](std::string& shown) {
             AbilityInfo info;
             PushBaseRsp rsp = PushBundleHelper::GetAbilityByName(MAIL, "MainAbility", USER, info);
             shown = info.name;
             return rsp;
         },
         "MainAbility"},
        {"name for uid", [](std::string& shown) { return PushBundleHelper::GetNameForUid(20010043, shown); }, MAIL},
        {"app index of a clone's uid",
         [](std::string& shown) {
             int index = -1;
             PushBaseRsp rsp = PushBundleHelper::GetAppIndex(20010043, index);
             shown = std::to_string(index);
             return rsp;
         },
         "1"},
        {"clone record",
         [](std::string& shown) {
             int ret = -1;
             BundleInfo info = PushBundleHelper::GetBundleInfo(MAIL, USER, 1, ret);
             shown = std::to_string(info.uid) + " " + std::to_string(info.extensionInfos.size());
             return PushBaseRsp(static_cast<Kavo::Push::PushError>(ret));
         },
         "20010043 1"},
        {"installed clone",
         [](std::string& shown) {
             auto [rsp, status] = PushBundleHelper::GetInstalledStatus(MAIL, USER, 1);
             shown = std::to_string(status);
             return rsp;
         },
         "1"},
        {"application uid",
         [](std::string& shown) {
             int uid = 0;
             PushBaseRsp rsp = PushBundleHelper::GetAppUidForName(BROWSER, USER, uid);
             shown = std::to_string(uid);
             return rsp;
         },
         "20010050"},
        {"checker flags",
         [](std::string& shown) {
             unsigned char flags = 0;
             PushBaseRsp rsp = PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags);
             shown = std::to_string(flags);
             return rsp;
         },
         "4"},
        {"parent pid",
         [](std::string& shown) {
             int pid = 0;
             PushBaseRsp rsp = PushBundleHelper::GetParentProcessPid(MAIL, USER, 20010042, pid);
             shown = std::to_string(pid);
             return rsp;
         },
         "3001"},
        {"extension process running",
         [](std::string& shown) {
             shown = PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH) ? "yes" : "no";
             return PushBaseRsp();
         },
         "yes"},
        {"foreground accounts",
         [](std::string& shown) {
             std::vector<int> ids;
             PushBaseRsp rsp = PushAccountHelper::GetForegroundOsAccounts(ids);
             shown = std::to_string(ids.size()) + " " + std::to_string(ids.at(0));
             return rsp;
         },
         "1 100"},
        {"foreground account id",
         [](std::string& shown) {
             int id = -1;
             PushBaseRsp rsp = PushAccountHelper::GetForegroundOsAccountLocalId(id);
             shown = std::to_string(id);
             return rsp;
         },
         "100"},
        {"account of a guest's uid",
         [](std::string& shown) {
             int id = -1;
             PushBaseRsp rsp = PushAccountHelper::GetOsAccountLocalIdFromUid(20210042, id);
             shown = std::to_string(id);
             return rsp;
         },
         "101"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string shown;
        PushBaseRsp rsp = c.act(shown);
        EXPECT_TRUE(rsp.Succeed()) << rsp.GetInfo();
        EXPECT_EQ(shown, c.expected);
    }
}

// Each query meets its service answering a chosen code.
TEST_F(DeviceQueryTest, ChosenCodesReachTheCallerAsEachQuerysResult)
{
    struct Case {
        const char* name;
        int service;
        const char* operation;
        int32_t code;
        std::function<PushBaseRsp()> act;
        int err;
        std::string desc;
    };
    int value = 0;
    bool flag = false;
    std::vector<int> ids;
    std::string text;
    BundleInfo bundle;
    const Case cases[] = {
        {"bundle record", 401, "GetBundleInfoV9", 5,
         [&] { return PushBundleHelper::GetBundleInfoV9(MAIL, USER, bundle); }, -1, "Get RimoBundleInfo, 5"},
        {"installed status V9", 401, "GetBundleInfoV9", 5,
         [&] { return PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value).first; }, -1,
         "Get install status failed, 5"},
        {"caller identity", 401, "GetNameAndIndexForUid", 9,
         [&] {
             ClientUserInfo info;
             return PushBundleHelper::GetIpcClientUserInfo(info);
         },
         -1, "get uid, bundle name, appIndex fail:9"},
        {"running processes", 501, "GetRunningProcessInformation", 3,
         [&] { return PushBundleHelper::IsAppRunning(MAIL, USER, flag, 0); }, 1000900001,
         "check if app running, get running process info fail: 3"},
        {"active accounts", 200, "QueryActiveOsAccountIds", 2,
         [&] { return PushAccountHelper::QueryActiveOsAccountIds(ids); }, 1000900001, "query active accountId fail: 2"},
        {"current account", 200, "GetOsAccountLocalIdFromProcess", 5,
         [&] { return PushBundleHelper::GetCurrAccountId(value); }, 1000900001, "Get os accountId failed"},
        {"verified flag", 200, "IsOsAccountVerified", 6, [&] { return PushAccountHelper::IsOsAccountVerified(flag); },
         1000900001, "the os account verifie fail: 6, userId: 100"},
        {"distributed account", 200, "GetKavoAccountInfo", 4,
         [&] { return PushDistributeAccountHelper::GetOsDistributedId(text); }, 1000900001,
         "Get os account distributed id failed:4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        device_.SetReturnCode(c.service, c.operation, c.code);
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_NE(c.act().GetErrDescription(), c.desc) << "the code was answered once";
    }
}

TEST_F(DeviceQueryTest, AccountServiceComingUpLateIsWaitedFor)
{
    // The push service's owner tracks service readiness from the registry's announcements.
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    int handle = samgr.AddStatusListener(
        [](int32_t id, bool up) { Status::SetStatus(id, up ? Status::STARTED : Status::STOPPED); });
    readiness_.Track(200, Status::STARTED);
    device_.StartServiceAfter(200, std::chrono::milliseconds(20));
    std::vector<int> ids;
    PushBaseRsp rsp = PushAccountHelper::QueryActiveOsAccountIds(ids);
    samgr.RemoveStatusListener(handle);
    EXPECT_TRUE(rsp.Succeed()) << rsp.GetInfo();
    EXPECT_EQ(ids, (std::vector<int>{100, 101}));
    EXPECT_EQ(events_.Events(), (std::vector<AnalyticsEvent>{{35, "QueryActiveOsAccountIds", 1, "4194321"}}));
}

TEST_F(DeviceQueryTest, UnavailableManagerFailsEveryFamily)
{
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    std::string name;
    PushBaseRsp bundle = PushBundleHelper::GetNameForUid(20010042, name);
    bool running = false;
    PushBaseRsp process = PushBundleHelper::IsAppRunning(MAIL, USER, running, 0);
    std::vector<int> ids;
    PushBaseRsp account = PushAccountHelper::QueryActiveOsAccountIds(ids);
    auto timer = std::make_shared<PushTimerInfo>(1);
    PushBaseRsp created = PushTimerHelper::StartTimer(timer);
    samgr.SetManagerAvailable(true);
    EXPECT_EQ(bundle.GetErrDescription(), "get samgr fail");
    EXPECT_EQ(process.GetErrDescription(), "get app mgr fail: get samgr fail");
    EXPECT_EQ(account.GetErrDescription(), "query active os accountIds fail: account sa not started");
    EXPECT_EQ(created.GetErrDescription(), "create timer fail: time service sa not started");
}

// Expiries counted under a lock: they arrive on the time service's thread.
class ExpiryCounter {
public:
    std::function<void()> Callback()
    {
        return [this] {
            std::lock_guard<std::mutex> lock(mutex_);
            ++count_;
            changed_.notify_all();
        };
    }
    bool WaitFor(int count)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(5), [&] { return count_ >= count; });
    }
    int Count()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return count_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

TEST_F(DeviceQueryTest, TimersStartedThroughTheHelperFireAndStop)
{
    ExpiryCounter expiries;
    auto timer = std::make_shared<PushTimerInfo>(0);
    timer->SetCallback(expiries.Callback());
    ASSERT_TRUE(PushTimerHelper::StartTimer(timer).Succeed());
    EXPECT_TRUE(expiries.WaitFor(1));
    auto& service = device_.GetTimeService();
    EXPECT_FALSE(service.IsArmed(timer->GetTimerId()));

    auto later = std::make_shared<PushTimerInfo>(3600);
    ASSERT_TRUE(PushTimerHelper::StartTimer(later).Succeed());
    EXPECT_TRUE(service.IsArmed(later->GetTimerId()));
    EXPECT_TRUE(PushTimerHelper::StopTimer(later).Succeed());
    EXPECT_FALSE(service.IsArmed(later->GetTimerId()));
    EXPECT_TRUE(PushTimerHelper::RestartTimer(later).Succeed());
    EXPECT_TRUE(service.IsArmed(later->GetTimerId()));
    EXPECT_TRUE(PushTimerHelper::DestoryTimer(later).Succeed());
    EXPECT_EQ(PushTimerHelper::StopTimer(later).GetErrDescription(), "Stop timer failed") << "destroyed";

    device_.SetReturnCode(3702, "CreateTimer", 1);
    EXPECT_EQ(PushTimerHelper::StartTimer(later).GetErrDescription(), "create timer fail: time service sa not started");
    device_.SetReturnCode(3702, "StartTimer", 1);
    EXPECT_EQ(PushTimerHelper::StartTimer(later).GetErrDescription(), "start timer fail");
    EXPECT_EQ(expiries.Count(), 1);
}

}  // namespace
}  // namespace KavoTest
