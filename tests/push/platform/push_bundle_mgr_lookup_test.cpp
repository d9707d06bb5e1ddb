// The package queries when the package manager cannot be had: the lookup's own failures and
// each query's text on top of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "kavo/host/log/log.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;

constexpr int USER = 100;
constexpr int32_t BUNDLE_ID = 401;
const std::string MAIL = "com.example.mail";

class NoBundleMgrTest : public ::testing::Test {
protected:
    ScopedReadiness readiness_;
    Kavo::LogCapture cap_;
};

TEST_F(NoBundleMgrTest, EachQueryLogsItsOwnTextAndPassesTheLookupFailureOn)
{
    Want want;
    std::vector<ExtensionAbilityInfo> extensions;
    std::vector<AbilityInfo> abilities;
    AbilityInfo ability;
    ApplicationInfo app;
    BundleInfo bundle;
    std::string name;
    int value = 0;
    struct Case {
        const char* name;
        std::function<PushBaseRsp()> act;
        std::string log;
    };
    const std::string lookup = "get bms fail: bms sa not started: error(1000900001)";
    const Case cases[] = {
        {"extension by want", [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want, USER, extensions); },
         "Get Bundle Mgr Fail"},
        {"extension by type",
         [&] {
             return PushBundleHelper::QueryExtensionAbilityInfos(want, ExtensionAbilityType::PUSH, 0, USER, extensions);
         },
         "Get Bundle Mgr Fail"},
        {"abilities", [&] { return PushBundleHelper::QueryAbilityInfos(want, USER, abilities); },
         "get bundle mgr fail"},
        {"one ability", [&] { return PushBundleHelper::QueryAbilityInfo(want, 0, USER, ability); },
         "Get Bundle Mgr Fail:" + lookup},
        {"application",
         [&] { return PushBundleHelper::GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, app); },
         "Get Bundle Mgr Fail"},
        {"name for uid", [&] { return PushBundleHelper::GetNameForUid(1, name); }, "Get Bundle Mgr Fail"},
        {"uid for name", [&] { return PushBundleHelper::GetUidByBundleName(MAIL, USER, value, 0); },
         "Get Bundle Mgr Fail"},
        {"bundle record", [&] { return PushBundleHelper::GetBundleInfoV9(MAIL, USER, bundle); },
         "GetBundleInfoV9 get bundle mgr fail"},
        {"app index", [&] { return PushBundleHelper::GetAppIndex(1, value); }, "get bundle mgr fail"},
        {"installed", [&] { return PushBundleHelper::GetInstalledStatus(MAIL, USER, 0).first; }, "get bundle mgr fail"},
        {"installed V9", [&] { return PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value).first; },
         "get bundle mgr fail"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        cap_.Clear();
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetInfo(), lookup);
        EXPECT_TRUE(HasLine(cap_, "Get bms fail: bms sa not started"));
        EXPECT_TRUE(HasLine(cap_, "Get bundle mgr fail: " + lookup));
        EXPECT_TRUE(HasLine(cap_, c.log));
    }
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value).second, -1);
    int ret = 3;
    cap_.Clear();
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 0, ret).name.empty());
    EXPECT_EQ(ret, 3);
    EXPECT_TRUE(HasLine(cap_, "Get bundle mgr fail: " + lookup));
}

TEST_F(NoBundleMgrTest, LookupFailsOnEachMissingPiece)
{
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    struct Case {
        const char* name;
        std::function<void()> arrange;
        std::function<void()> restore;
        std::string desc;
        std::string log;
    };
    auto foreign = Kavo::AsRemoteObject<IAppMgr>(Kavo::MakeSptr<MockAppMgr>());
    const Case cases[] = {
        {"the system ability manager is unavailable", [&] { samgr.SetManagerAvailable(false); },
         [&] { samgr.SetManagerAvailable(true); }, "get samgr fail", "get samgr fail"},
        {"service 401 is not registered", [] {}, [] {}, "get bms fail: bms sa not started",
         "Get bms fail: bms sa not started"},
        {"service 401 is another interface", [&] { samgr.AddSystemAbility(BUNDLE_ID, foreign); },
         [&] { samgr.RemoveSystemAbility(BUNDLE_ID); }, "IBundleMgr is null", "IBundleMgr is null"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        cap_.Clear();
        c.arrange();
        std::string name;
        PushBaseRsp rsp = PushBundleHelper::GetNameForUid(1, name);
        c.restore();
        EXPECT_EQ(rsp.GetErr(), 1000900001);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(HasLine(cap_, c.log));
    }
}

TEST_F(NoBundleMgrTest, LookupWaitsForAStoppedManagerAndGivesUpWithTheStoppedCode)
{
    readiness_.Track(BUNDLE_ID, ScopedReadiness::Service::STOPPED);
    std::string name;
    PushBaseRsp rsp = PushBundleHelper::GetNameForUid(1, name);
    EXPECT_EQ(rsp.GetErr(), 1000900001);
    EXPECT_EQ(rsp.GetInnerErr(), Kavo::Push::INNER_ERR_SA_STOPPED);
}

}  // namespace
}  // namespace KavoTest
