// The platform queries on a realistic simulated device: every answer read from its state.
#include <gtest/gtest.h>

#include <functional>

#include "kavo/host/device/device.h"
#include "kavo/push/platform/push_account_helper.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "kavo/push/platform/push_distribute_account_helper.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Push::ClientUserInfo;
using Kavo::Push::PushAccountHelper;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using Kavo::Push::PushDistributeAccountHelper;
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

// A phone with a foreground owner (100), a mail app with a clone and a push extension, and a browser.
class DeviceQueryTest : public ::testing::Test {
protected:
    DeviceQueryTest()
    {
        device_.AddAccount({USER, true, true, true});
        Kavo::Host::InstalledBundle mail(MAIL, 10042);
        mail.cloneIndexes = {1};
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
        device_.Activate();
    }

    ScopedReadiness readiness_;
    EventRecorder events_;
    Kavo::Host::Device device_;
    int number_ = -1;
    AbilityInfo ability_;
};

// "error <code> <description>: " when the query failed, then the answer (evaluated after the query).
std::string operator<<(const PushBaseRsp& rsp, const std::string& answer)
{
    return (rsp.Succeed() ? "" : "error " + std::to_string(rsp.GetErr()) + " " + rsp.GetErrDescription() + ": ") +
           answer;
}

TEST_F(DeviceQueryTest, EveryQuerySucceedsWithTheDevicesAnswer)
{
    using H = PushBundleHelper;
    using A = PushAccountHelper;
    auto str = [](auto v) { return std::to_string(v); };
    ClientUserInfo caller;
    device_.SetCallingUid(device_.UidOf(MAIL, USER, 1));
    const std::pair<std::function<std::string()>, std::string> cases[] = {
        {[&] {
             return (H::GetIpcClientUserInfo(caller) << caller.bundleName + " " + str(caller.userId) + " " +
                                                            str(caller.appIndex) + " " + str(caller.uid));
         },
         MAIL + " 100 1 20010043"},
        {[&] { return H::IsBrowserAvailable() << str(H::IsSystemApp(BROWSER, USER)); }, "1"},
        {[&] { return H::GetMainAbility(MAIL, USER, ability_) << ability_.name; }, "MainAbility"},
        {[&] { return H::GetAbilityByAction(BROWSER, "kavo.want.action.viewData", USER, ability_) << ability_.name; },
         "Viewer"},
        {[&] { return H::GetAbilityByUri(BROWSER, "http://a", USER, ability_) << ability_.name; }, "Viewer"},
        {[&] { return H::GetAbilityByName(MAIL, "MainAbility", USER, ability_) << ability_.name; }, "MainAbility"},
        {[&] { return H::GetAppIndex(20010043, number_) << str(number_); }, "1"},
        {[&] {
             BundleInfo info = H::GetBundleInfo(MAIL, USER, 1, number_);
             return str(number_) + " " + str(info.uid) + " " + str(info.extensionInfos.size()) + " " +
                    str(H::GetInstalledStatus(MAIL, USER, 1).second);
         },
         "0 20010043 1 1"},
        {[&] {  // a missing bundle is "not installed" (0), not "unknown" (-1)
             auto [v9, v9Status] = H::GetInstalledStatusV9("com.example.none", USER, number_);
             auto [flag, flagStatus] = H::GetInstalledStatus("com.example.none", USER, 0);
             return (v9 << str(v9Status)) + ", " + (flag << str(flagStatus));
         },
         "error -1 bundle is not installed: 0, error -1 : 0"},
        {[&] {
             std::vector<int> ids = {7};  // appended after what the caller held
             return A::GetForegroundOsAccounts(ids) << str(ids.size()) + " " + str(ids.back());
         },
         "2 100"},
        {[&] {  // only the exact anonymous uid means nobody is logged in
             std::string shown;
             for (const char* uid : {"kavoAnonymousUid", "5500123", "KavoAnonymousUid", "kavoAnonymousUid "}) {
                 device_.SetDistributedAccount(uid);
                 std::string id = "kept";
                 shown += (PushDistributeAccountHelper::GetOsDistributedId(id) << id) + "|";
             }
             return shown;
         },
         "error 1000900001 Os account id not login: kept|5500123|KavoAnonymousUid|kavoAnonymousUid |"},
    };
    for (const auto& [shown, expected] : cases) {
        EXPECT_EQ(shown(), expected);
    }
    EXPECT_EQ(events_.Take(), Events{});
}

}  // namespace
}  // namespace KavoTest
