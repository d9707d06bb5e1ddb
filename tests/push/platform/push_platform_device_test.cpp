// The platform queries on a realistic simulated device: every answer read from its state, and
// timers really firing on its time service.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>

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

const std::string MAIL = "com.example.mail", BROWSER = "com.example.browser";
constexpr int USER = 100;

AbilityInfo Ability(const std::string& name, std::vector<std::string> actions, std::vector<std::string> entities,
                    std::vector<std::string> uris)
{
    AbilityInfo info;
    info.name = name, info.actions = std::move(actions);
    info.entities = std::move(entities), info.uris = std::move(uris);
    return info;
}

ExtensionAbilityInfo Extension(const std::string& name, T type, int appIndex)
{
    ExtensionAbilityInfo info;
    info.name = name, info.type = type, info.appIndex = appIndex;
    return info;
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
        device_.StartProcess({MAIL, USER, 0, 3001, S::BACKGROUND});
        device_.StartProcess({MAIL, USER, 0, 3002, S::FOREGROUND, ProcessType::EXTENSION, T::REMOTE_NOTIFICATION});
        device_.StartProcess({MAIL, USER, 1, 3003, S::READY, ProcessType::EXTENSION, T::PUSH});
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

// Every query answered from the device's state: it succeeds, then shows what it handed back.
TEST_F(DeviceQueryTest, EveryQuerySucceedsWithTheDevicesAnswer)
{
    using H = PushBundleHelper;
    using A = PushAccountHelper;
    auto str = [](auto v) { return std::to_string(v); };
    auto distributedId = [this](const char* loggedIn) {
        device_.SetDistributedAccount(loggedIn);
        return PushDistributeAccountHelper::GetOsDistributedId(text_);
    };
    struct Case {
        std::function<PushBaseRsp()> act;
        std::function<std::string()> shown;
        std::string expected;
    };
    ClientUserInfo c;
    std::vector<ExtensionAbilityInfo> v;
    Want https;
    https.SetUri("https://example.com");
    device_.SetCallingUid(device_.UidOf(MAIL, USER, 1));
    const Case cases[] = {
        {[&] { return H::GetIpcClientUserInfo(c); },
         [&] { return c.bundleName + " " + str(c.userId) + " " + str(c.appIndex) + " " + str(c.uid); },
         MAIL + " 100 1 20010043"},
        {nullptr, [&] { return str(H::ExtensionExist(mailWant_, USER, T::PUSH, 1).GetErr()); }, "0"},
        {nullptr, [&] { return str(H::ExtensionExist(mailWant_, USER, T::PUSH, 0).GetErr()); }, "1000900002"},
        {[&] { return H::QueryExtensionAbilityInfos(mailWant_, T::PUSH, 0, USER, v); },
         [&] { return str(v.size()) + " " + str(v.at(1).uid); }, "2 20010043"},
        {[&] { return H::QueryAbilityInfo(https, 0, USER, ability_); },
         [&] { return ability_.bundleName + "/" + ability_.name; }, BROWSER + "/Viewer"},
        {[&] { return H::IsBrowserAvailable(); }, [] { return ""; }, ""},
        {nullptr, [&] { return str(H::IsSystemApp(BROWSER, USER)); }, "1"},
        {[&] { return H::GetMainAbility(MAIL, USER, ability_); }, [&] { return ability_.name; }, "MainAbility"},
        {[&] { return H::GetAbilityByAction(BROWSER, "kavo.want.action.viewData", USER, ability_); },
         [&] { return ability_.name; }, "Viewer"},
        {[&] { return H::GetAbilityByUri(BROWSER, "http://a", USER, ability_); }, [&] { return ability_.name; },
         "Viewer"},
        {[&] { return H::GetAbilityByName(MAIL, "MainAbility", USER, ability_); }, [&] { return ability_.name; },
         "MainAbility"},
        {[&] { return H::GetNameForUid(20010043, text_); }, [&] { return text_; }, MAIL},
        {[&] { return H::GetAppIndex(20010043, n_); }, [&] { return str(n_); }, "1"},
        {nullptr,
         [&] {
             BundleInfo info = H::GetBundleInfo(MAIL, USER, 1, n_);
             return str(n_) + " " + str(info.uid) + " " + str(info.extensionInfos.size());
         },
         "0 20010043 1"},
        {nullptr, [&] { return str(H::GetInstalledStatus(MAIL, USER, 1).second); }, "1"},
        {[&] { return H::GetInstalledStatusV9(MAIL, USER, n_).first; }, [&] { return str(n_); }, "20010042"},
        {nullptr,
         [&] {  // a missing bundle is "not installed" (0), not "unknown" (-1)
             auto [v9, v9Status] = H::GetInstalledStatusV9("com.example.none", USER, n_);
             auto [flag, flagStatus] = H::GetInstalledStatus("com.example.none", USER, 0);
             return str(v9Status) + " " + str(v9.GetErr()) + " " + v9.GetErrDescription() + ", " + str(flagStatus) +
                    " " + str(flag.GetErr()) + " " + flag.GetErrDescription();
         },
         "0 -1 bundle is not installed, 0 -1 "},
        {[&] { return H::GetAppUidForName(BROWSER, USER, n_); }, [&] { return str(n_); }, "20010050"},
        {[&] { return H::GetAppAnitizerFlag(MAIL, USER, flags_); }, [&] { return str(flags_); }, "4"},
        {[&] {
             return H::IsRemoteForegrounding({MAIL, USER, 0, 20010042}, n_, b_, false);
         },
         [&] { return str(b_) + " " + str(n_); }, "1 3002"},  // its notification extension is in the foreground
        {[&] { return H::GetChildProcessPid(MAIL, USER, T::PUSH, 20010043, n_); }, [&] { return str(n_); }, "3003"},
        {[&] { return H::GetParentProcessPid(MAIL, USER, 20010042, n_); }, [&] { return str(n_); }, "3001"},
        {[&] {
             return H::GetAppProcessState({MAIL, USER, 1, "push"}, n_, flags_);
         },
         [&] { return str(n_) + " " + str(flags_); }, "1 4"},
        {[&] { return H::IsAppRunning(BROWSER, USER, b_, 0); }, [&] { return str(b_); }, "0"},
        {nullptr, [&] { return str(H::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH)); }, "1"},
        {[&] { return A::QueryActiveOsAccountIds(ids_); }, [&] { return str(ids_.size()); }, "2"},
        {[&] { return A::IsOsAccountVerified(b_); }, [&] { return str(b_); }, "1"},
        {[&] { return H::GetCurrAccountId(n_); }, [&] { return str(n_); }, "100"},
        {[&] { return H::GetCurrBundle(text_); }, [&] { return text_; }, "com.kavo.push"},
        {[&] {
             ids_ = {7};  // appended after what the caller held
             return A::GetForegroundOsAccounts(ids_);
         },
         [&] { return str(ids_.size()) + " " + str(ids_.back()); }, "2 100"},
        {[&] { return A::GetForegroundOsAccountLocalId(n_); }, [&] { return str(n_); }, "100"},
        {[&] { return A::GetOsAccountLocalIdFromUid(20210042, n_); }, [&] { return str(n_); }, "101"},
        {nullptr,
         [&] {
             text_ = "kept";
             std::string desc = distributedId("kavoAnonymousUid").GetErrDescription();
             return desc + " " + text_;
         },
         "Os account id not login kept"},
        // Only the exact anonymous uid means nobody is logged in.
        {[&] { return distributedId("5500123"); }, [&] { return text_; }, "5500123"},
        {[&] { return distributedId("KavoAnonymousUid"); }, [&] { return text_; }, "KavoAnonymousUid"},
        {[&] { return distributedId("kavoAnonymousUid "); }, [&] { return text_; }, "kavoAnonymousUid "},
    };
    for (const auto& row : cases) {
        PushBaseRsp rsp = row.act ? row.act() : PushBaseRsp();
        EXPECT_TRUE(rsp.Succeed()) << rsp.GetInfo();
        EXPECT_EQ(row.shown(), row.expected);
    }
    EXPECT_EQ(events_.Take(), Events{});
}

TEST_F(DeviceQueryTest, TimersStartedThroughTheHelperFireAndStop)
{
    std::promise<void> fired;  // set on the time service's thread; a second expiry would throw
    auto timer = std::make_shared<PushTimerInfo>(0);
    timer->SetCallback([&fired] { fired.set_value(); });
    ASSERT_TRUE(PushTimerHelper::StartTimer(timer).Succeed());
    EXPECT_EQ(fired.get_future().wait_for(std::chrono::seconds(5)), std::future_status::ready);
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
}

}  // namespace
}  // namespace KavoTest
