// The platform queries on a realistic simulated device: answers read from its state, the codes
// its services are told to answer, a service that comes up late, and timers really firing.
#include <gtest/gtest.h>

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

using Kavo::Push::ClientUserInfo;
using Kavo::Push::PushAccountHelper;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using Kavo::Push::PushDistributeAccountHelper;
using Kavo::Push::PushTimerHelper;
using Kavo::Push::PushTimerInfo;
using S = AppProcessState;
using T = ExtensionAbilityType;
using Status = Kavo::Push::SystemAbilityStatusService;

const std::string MAIL = "com.example.mail", BROWSER = "com.example.browser";
constexpr int USER = 100;

AbilityInfo Ability(const std::string& name, std::vector<std::string> actions, std::vector<std::string> entities,
                    std::vector<std::string> uris)
{
    AbilityInfo info;
    info.name = name, info.actions = std::move(actions), info.entities = std::move(entities), info.uris = std::move(uris);
    return info;
}

ExtensionAbilityInfo Extension(const std::string& name, T type, int appIndex)
{
    ExtensionAbilityInfo info;
    info.name = name, info.type = type, info.appIndex = appIndex;
    return info;
}

void Ok(const PushBaseRsp& rsp)
{
    EXPECT_TRUE(rsp.Succeed()) << rsp.GetInfo();
}

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
        mail.abilities = {Ability("MainAbility", {Want::ACTION_HOME}, {Want::ENTITY_HOME}, {}),
                          Ability("SecondHome", {Want::ACTION_HOME}, {Want::ENTITY_HOME}, {})};
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
        mailWant_.SetBundle(MAIL);
    }

    ScopedReadiness readiness_;
    EventRecorder events_;
    Kavo::Host::Device device_;
    Want mailWant_;
    int n_ = -1;
    bool b_ = false;
    unsigned char flags_ = 0;
    std::string text_;
    std::vector<int> ids_;
    AbilityInfo ability_;
};

// Every query answered from the device's state, as "what it handed back".
TEST_F(DeviceQueryTest, EveryQuerySucceedsWithTheDevicesAnswer)
{
    auto str = [](auto v) { return std::to_string(v); };
    const std::pair<std::function<std::string()>, std::string> cases[] = {
        {[&] {
             device_.SetCallingUid(device_.UidOf(MAIL, USER, 1));
             ClientUserInfo c;
             Ok(PushBundleHelper::GetIpcClientUserInfo(c)); return c.bundleName + " " + str(c.userId) + " " +
                                                                     str(c.appIndex) + " " + str(c.uid);
         }, MAIL + " 100 1 20010043"},
        {[&] { return str(PushBundleHelper::ExtensionExist(mailWant_, USER, T::PUSH, 1).GetErr()); }, "0"},
        {[&] { return str(PushBundleHelper::ExtensionExist(mailWant_, USER, T::PUSH, 0).GetErr()); }, "1000900002"},
        {[&] {
             std::vector<ExtensionAbilityInfo> v;
             Ok(PushBundleHelper::QueryExtensionAbilityInfos(mailWant_, T::PUSH, 0, USER, v)); return str(v.size()) + " " + str(v.at(1).uid);
         }, "2 20010043"},
        {[&] {
             Want w;
             w.SetUri("https://example.com");
             Ok(PushBundleHelper::QueryAbilityInfo(w, 0, USER, ability_)); return ability_.bundleName + "/" + ability_.name;
         }, BROWSER + "/Viewer"},
        {[&] { Ok(PushBundleHelper::IsBrowserAvailable()); return "browser"; }, "browser"},
        {[&] { return str(PushBundleHelper::IsSystemApp(BROWSER, USER)); }, "1"},
        {[&] { Ok(PushBundleHelper::GetMainAbility(MAIL, USER, ability_)); return ability_.name; }, "MainAbility"},
        {[&] {
             Ok(PushBundleHelper::GetAbilityByAction(BROWSER, "kavo.want.action.viewData", USER, ability_)); return ability_.name;
         }, "Viewer"},
        {[&] { Ok(PushBundleHelper::GetAbilityByUri(BROWSER, "http://a", USER, ability_)); return ability_.name; }, "Viewer"},
        {[&] { Ok(PushBundleHelper::GetAbilityByName(MAIL, "MainAbility", USER, ability_)); return ability_.name; },
         "MainAbility"},
        {[&] { Ok(PushBundleHelper::GetNameForUid(20010043, text_)); return text_; }, MAIL},
        {[&] { Ok(PushBundleHelper::GetAppIndex(20010043, n_)); return str(n_); }, "1"},
        {[&] {
             BundleInfo info = PushBundleHelper::GetBundleInfo(MAIL, USER, 1, n_);
             return str(n_) + " " + str(info.uid) + " " + str(info.extensionInfos.size());
         }, "0 20010043 1"},
        {[&] { return str(PushBundleHelper::GetInstalledStatus(MAIL, USER, 1).second); }, "1"},
        {[&] {
             int status = PushBundleHelper::GetInstalledStatusV9(MAIL, USER, n_).second;
             return str(status) + " " + str(n_);
         }, "1 20010042"},
        {[&] { return str(PushBundleHelper::GetInstalledStatusV9("com.example.none", USER, n_).second); }, "0"},
        {[&] { Ok(PushBundleHelper::GetAppUidForName(BROWSER, USER, n_)); return str(n_); }, "20010050"},
        {[&] { Ok(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags_)); return str(flags_); }, "4"},
        {[&] {
             PushBaseRsp rsp = PushBundleHelper::IsRemoteForegrounding({MAIL, USER, 0, 20010042}, n_, b_, false);
             Ok(rsp); return str(b_) + " " + str(n_);
         }, "1 3002"},  // its notification extension is in the foreground
        {[&] { Ok(PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, 20010043, n_)); return str(n_); }, "3003"},
        {[&] { Ok(PushBundleHelper::GetParentProcessPid(MAIL, USER, 20010042, n_)); return str(n_); }, "3001"},
        {[&] {
             Ok(PushBundleHelper::GetAppProcessState({MAIL, USER, 1, "push"}, n_, flags_)); return str(n_) + " " + str(flags_);
         }, "1 4"},
        {[&] { Ok(PushBundleHelper::IsAppRunning(BROWSER, USER, b_, 0)); return str(b_); }, "0"},
        {[&] { return str(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH)); }, "1"},
        {[&] { Ok(PushAccountHelper::QueryActiveOsAccountIds(ids_)); return str(ids_.size()); }, "2"},
        {[&] { Ok(PushAccountHelper::IsOsAccountVerified(b_)); return str(b_); }, "1"},
        {[&] { Ok(PushBundleHelper::GetCurrAccountId(n_)); return str(n_); }, "100"},
        {[&] { Ok(PushBundleHelper::GetCurrBundle(text_)); return text_; }, "com.kavo.push"},
        {[&] {
             ids_ = {7};
             Ok(PushAccountHelper::GetForegroundOsAccounts(ids_));
             return str(ids_.size()) + " " + str(ids_.back());
         }, "2 100"},  // appended after what the caller held
        {[&] { Ok(PushAccountHelper::GetForegroundOsAccountLocalId(n_)); return str(n_); }, "100"},
        {[&] { Ok(PushAccountHelper::GetOsAccountLocalIdFromUid(20210042, n_)); return str(n_); }, "101"},
        {[&] { return PushDistributeAccountHelper::GetOsDistributedId(text_).GetErrDescription(); },
         "Os account id not login"},
        {[&] {
             device_.SetDistributedAccount("5500123");
             Ok(PushDistributeAccountHelper::GetOsDistributedId(text_)); return text_;
         }, "5500123"},
    };
    for (const auto& [act, expected] : cases) {
        EXPECT_EQ(act(), expected);
    }
    EXPECT_EQ(events_.Take(), Events{});
}

TEST_F(DeviceQueryTest, AccountServiceComingUpLateIsWaitedFor)
{
    // The push service's owner tracks service readiness from the registry's announcements.
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    int handle = samgr.AddStatusListener(
        [](int32_t id, bool up) { Status::SetStatus(id, up ? Status::STARTED : Status::STOPPED); });
    readiness_.Track(200, Status::STARTED);
    device_.StartServiceAfter(200, std::chrono::milliseconds(20));
    PushBaseRsp rsp = PushAccountHelper::QueryActiveOsAccountIds(ids_);
    samgr.RemoveStatusListener(handle);
    EXPECT_TRUE(rsp.Succeed()) << rsp.GetInfo();
    EXPECT_EQ(ids_, (std::vector<int>{100, 101}));
    EXPECT_EQ(events_.Take(), (Events{{35, "QueryActiveOsAccountIds", 1, "4194321"}}));
}

TEST_F(DeviceQueryTest, UnavailableManagerFailsEveryFamily)
{
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    std::vector<std::string> got = {PushBundleHelper::GetNameForUid(20010042, text_).GetErrDescription(),
                                    PushBundleHelper::IsAppRunning(MAIL, USER, b_, 0).GetErrDescription(),
                                    PushAccountHelper::QueryActiveOsAccountIds(ids_).GetErrDescription(),
                                    PushTimerHelper::StartTimer(std::make_shared<PushTimerInfo>(1)).GetErrDescription()};
    samgr.SetManagerAvailable(true);
    EXPECT_EQ(got, (std::vector<std::string>{"get samgr fail", "get app mgr fail: get samgr fail",
                                             "query active os accountIds fail: account sa not started",
                                             "create timer fail: time service sa not started"}));
}

TEST_F(DeviceQueryTest, TimersStartedThroughTheHelperFireAndStop)
{
    std::mutex mutex;
    std::condition_variable fired;
    int count = 0;  // expiries arrive on the time service's thread
    auto timer = std::make_shared<PushTimerInfo>(0);
    timer->SetCallback([&] {
        std::lock_guard<std::mutex> lock(mutex);
        ++count;
        fired.notify_all();
    });
    ASSERT_TRUE(PushTimerHelper::StartTimer(timer).Succeed());
    {
        std::unique_lock<std::mutex> lock(mutex);
        EXPECT_TRUE(fired.wait_for(lock, std::chrono::seconds(5), [&] { return count == 1; }));
    }
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
    std::lock_guard<std::mutex> lock(mutex);
    EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace KavoTest
