// The package and process queries against GoogleMock managers: the exact requests, the mapping
// of each failure code, and each query's texts when its manager cannot be had.
#include "kavo/push/platform/push_bundle_helper.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <optional>

#include "tests/push/platform/platform_mocks.h"
#include "tests/support/test_support.h"

namespace KavoTest {
namespace {

using Kavo::Push::ClientUserInfo;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using T = ExtensionAbilityType;

constexpr int USER = 100;
constexpr int32_t BUNDLE_ID = 401, APP_ID = 501;
const std::string MAIL = "com.example.mail";

// What a missing manager adds: the lookup's text and the two lines logged on the way.
struct Lookup { std::string info, line, passOn; };
const Lookup BMS{"get bms fail: bms sa not started: error(1000900001)", "Get bms fail: bms sa not started",
                 "Get bundle mgr fail: get bms fail: bms sa not started: error(1000900001)"};
const Lookup AMS{"get ams fail: ams sa not started: error(1000900001)", "get ams fail: ams sa not started",
                 "Get app mgr fail: get ams fail: ams sa not started: error(1000900001)"};

class BundleQueryTest : public ::testing::Test {
protected:
    ScopedReadiness readiness_;
    std::optional<ScopedBundleMgr> bms_{std::in_place, BUNDLE_ID};
    std::optional<ScopedAppMgr> ams_{std::in_place, APP_ID};
    Kavo::LogCapture cap_;
    Want want_;
    std::vector<ExtensionAbilityInfo> extensions_;
    std::vector<AbilityInfo> abilities_;
    AbilityInfo ability_;
    ApplicationInfo app_;
    BundleInfo bundle_;
    std::string name_;
    int value_ = 0, pid_ = 0, state_ = 0;
    bool flag_ = false;
    unsigned char flags_ = 0;
};

// Each query meets its manager answering a failure code, then no manager at all.
TEST_F(BundleQueryTest, FailureCodesAndTheMissingManagerMapToEachQuerysResult)
{
    using Arrange = std::function<void(MockBundleMgr&, MockAppMgr&)>;
    struct Case { const char* name; Arrange arrange; std::function<PushBaseRsp()> act; int err; std::string desc, log;
                  const Lookup* mgr; std::string noMgrLog; };
    Arrange processes6 = [](auto&, auto& a) { EXPECT_CALL(a, GetRunningProcessInformation(MAIL, USER, _)).WillOnce(Return(6)); };
    const Case cases[] = {
        {"extension by want: does not exist",
         [](auto& m, auto&) { EXPECT_CALL(m, QueryExtensionAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(7)); },
         [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want_, USER, extensions_); }, 1000900002,
         "query extension fail:7", "query extension fail:7", &BMS, "Get Bundle Mgr Fail"},
        {"extension by type: passes type and flags",
         [](auto& m, auto&) { EXPECT_CALL(m, QueryExtensionAbilityInfosV9(_, T::PUSH, 3, USER, _)).WillOnce(Return(-5)); },
         [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want_, T::PUSH, 3, USER, extensions_); },
         1000900001, "Query extension ability info failed:-5", "Query extension ability info failed:-5", &BMS,
         "Get Bundle Mgr Fail"},
        {"abilities", [](auto& m, auto&) { EXPECT_CALL(m, QueryAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(9)); },
         [&] { return PushBundleHelper::QueryAbilityInfos(want_, USER, abilities_); }, 1000900001,
         "Query ability infos failed:9", "Query Ability InfosV9 Fail", &BMS, "get bundle mgr fail"},
        {"one ability", [](auto& m, auto&) { EXPECT_CALL(m, QueryAbilityInfo(_, 4, USER, _)).WillOnce(Return(false)); },
         [&] { return PushBundleHelper::QueryAbilityInfo(want_, 4, USER, ability_); }, 1000900001,
         "query ability info failed", "query ability info failed", &BMS, "Get Bundle Mgr Fail:" + BMS.info},
        {"application",
         [](auto& m, auto&) {
             EXPECT_CALL(m, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _)).WillOnce(Return(false));
         },
         [&] { return PushBundleHelper::GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, app_); },
         1000900001, "Get application info fail", "Get application info fail", &BMS, "Get Bundle Mgr Fail"},
        {"name for uid", [](auto& m, auto&) { EXPECT_CALL(m, GetNameForUid(20010001, _)).WillOnce(Return(8521225)); },
         [&] { return PushBundleHelper::GetNameForUid(20010001, name_); }, 1000900001,
         "Get name for uid fail: 8521225", "Get name for uid fail: 8521225", &BMS, "Get Bundle Mgr Fail"},
        {"uid for name: an unknown bundle's -1 is a success",
         [](auto& m, auto&) { EXPECT_CALL(m, GetUidByBundleName(MAIL, USER, 0)).WillOnce(Return(-1)); },
         [&] { return PushBundleHelper::GetUidByBundleName(MAIL, USER, value_, 0); }, 0, "", "", &BMS,
         "Get Bundle Mgr Fail"},
        {"bundle record", [](auto& m, auto&) { EXPECT_CALL(m, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(Return(8521220)); },
         [&] { return PushBundleHelper::GetBundleInfoV9(MAIL, USER, bundle_); }, -1, "Get RimoBundleInfo, 8521220",
         "GetBundleInfoV9 failed ret:8521220", &BMS, "GetBundleInfoV9 get bundle mgr fail"},
        {"app index", [](auto& m, auto&) { EXPECT_CALL(m, GetNameAndIndexForUid(20010001, _, _)).WillOnce(Return(12)); },
         [&] { return PushBundleHelper::GetAppIndex(20010001, value_); }, -1, "get appIndex failed:12",
         "Get appIndex faild: 12", &BMS, "get bundle mgr fail"},
        {"installed", [](auto& m, auto&) { EXPECT_CALL(m, IsBundleInstalled(MAIL, USER, 2, _)).WillOnce(Return(5)); },
         [&] { return PushBundleHelper::GetInstalledStatus(MAIL, USER, 2).first; }, -1,
         "Get install status failed, 5", "", &BMS, "get bundle mgr fail"},
        {"installed V9", [](auto& m, auto&) { EXPECT_CALL(m, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(Return(5)); },
         [&] { return PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value_).first; }, -1,
         "Get install status failed, 5", "", &BMS, "get bundle mgr fail"},
        {"running", processes6, [&] { return PushBundleHelper::IsAppRunning(MAIL, USER, flag_, 0); }, 1000900001,
         "check if app running, get running process info fail: 6", "Get running process info fail: :6", &AMS,
         "Get app mgr fail :" + AMS.info},
        {"foreground", processes6,
         [&] { return PushBundleHelper::IsRemoteForegrounding({MAIL, USER, 0, 20010042}, pid_, flag_, false); },
         1000900001, "check if app foreground, get running process info fail: 6",
         "check if app foreground, get running process info fail: 6", &AMS, "Get App Mgr"},
        {"child", processes6, [&] { return PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, 20010042, pid_); },
         1000900001, "check if child pid, get running process info fail: 6",
         "check if child pid, get running process info fail: 6", &AMS, "Get App Mgr"},
        {"parent", processes6, [&] { return PushBundleHelper::GetParentProcessPid(MAIL, USER, 20010042, pid_); },
         1000900001, "check if parent pid, get running process info fail: 6",
         "check if parent pid, get running process info fail: 6", &AMS, "Get App Mgr"},
        {"state", processes6, [&] { return PushBundleHelper::GetAppProcessState({MAIL, USER, 0, ""}, state_, flags_); },
         1000900001, "get app process state, get running process info fail: 6",
         "get app process state, get running process info fail: 6", &AMS, "Get App Mgr Fail"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bms_.emplace(BUNDLE_ID);
        ams_.emplace(APP_ID);
        cap_.Clear();
        c.arrange(**bms_, **ams_);
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(c.log.empty() || HasLine(cap_, c.log));
        bms_.reset();
        ams_.reset();
        cap_.Clear();
        EXPECT_EQ(c.act().GetInfo(), c.mgr->info);
        EXPECT_EQ(std::vector<bool>({HasLine(cap_, c.mgr->line), HasLine(cap_, c.mgr->passOn), HasLine(cap_, c.noMgrLog)}),
                  std::vector<bool>(3, true));
    }
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value_).second, -1);
    EXPECT_EQ(state_, -1);
    EXPECT_EQ(pid_, INT_MIN);
    int ret = 3;
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 0, ret).name.empty());
    EXPECT_EQ(ret, 3) << "no manager: the code is left as it was";
    ClientUserInfo info;
    EXPECT_EQ(PushBundleHelper::GetIpcClientUserInfo(info).GetErrDescription(), "get bms fail: bms sa not started");
    EXPECT_TRUE(HasLine(cap_, "Get BundleMgr failed, ret: 1000900001"));
    bms_.emplace(BUNDLE_ID);
    EXPECT_CALL(**bms_, GetNameAndIndexForUid(1, _, _)).WillOnce(Return(12));
    EXPECT_EQ(PushBundleHelper::GetAppIndex(1, value_).GetInnerErr(), Kavo::Push::INNER_ERR_CLIENT_INFO_REFUSED);
}

// The extension check answers false either way, with an exception report instead of a result.
TEST_F(BundleQueryTest, ExtensionProcessCheckReportsItsFailures)
{
    ReportRecorder reports;
    EXPECT_CALL(**ams_, GetRunningProcessInformation(MAIL, USER, _)).WillOnce(Return(6));
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    samgr.SetManagerAvailable(true);
    EXPECT_EQ(reports.Reports(), (std::vector<std::pair<int, std::string>>{
                                     {100002017, "get running process information ret(6)"},
                                     {100002017, "Get app mgr fail :get app mgr fail: get samgr fail: error(1000900001)"}}));
}

TEST_F(BundleQueryTest, InstalledStatusDistinguishesMissingBundleFromPlatformFailure)
{
    struct Case { const char* name; bool v9; int32_t code; bool installedFlag; int status, err; std::string desc; };
    const Case cases[] = {
        {"V9: a missing bundle is not installed", true, 8521220, false, 0, -1, "bundle is not installed"},
        {"flag: false is not installed, no text", false, 0, false, 0, -1, ""},
    };
    BundleInfo answer;
    answer.uid = 20010042;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int uid = 7;
        std::pair<PushBaseRsp, int> result;
        if (c.v9) {
            EXPECT_CALL(**bms_, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(DoAll(SetArgReferee<2>(answer), Return(c.code)));
            result = PushBundleHelper::GetInstalledStatusV9(MAIL, USER, uid);
            EXPECT_EQ(uid, c.status == 1 ? 20010042 : 7);
        } else {
            EXPECT_CALL(**bms_, IsBundleInstalled(MAIL, USER, 2, _))
                .WillOnce(DoAll(SetArgReferee<3>(c.installedFlag), Return(c.code)));
            result = PushBundleHelper::GetInstalledStatus(MAIL, USER, 2);
        }
        EXPECT_EQ(result.second, c.status);
        EXPECT_EQ(result.first.GetErr(), c.err);
        EXPECT_EQ(result.first.GetErrDescription(), c.desc);
    }
    BundleInfo clone;
    clone.appIndex = 2;
    EXPECT_CALL(**bms_, GetCloneBundleInfo(MAIL, 1, 2, _, USER)).WillOnce(DoAll(SetArgReferee<3>(clone), Return(0)));
    EXPECT_CALL(**bms_, GetCloneBundleInfo(MAIL, 1, 3, _, USER)).WillOnce(Return(8521290));
    int ret = -9;
    EXPECT_EQ(PushBundleHelper::GetBundleInfo(MAIL, USER, 2, ret).appIndex, 2);
    EXPECT_EQ(ret, 0);
    EXPECT_EQ(PushBundleHelper::GetBundleInfo(MAIL, USER, 3, ret).appIndex, 0);
    EXPECT_EQ(ret, 8521290);
    EXPECT_TRUE(HasLine(cap_, "Get clone bundle info com.example.mail failed: 8521290"));
}

TEST_F(BundleQueryTest, ApplicationRecordFeedsUidSystemFlagAndCheckerBits)
{
    struct Case { bool asan, tsan, gwp, hwasan; unsigned char flags; };
    const Case cases[] = {{false, false, false, false, 0}, {true, false, false, false, 1},
                          {false, false, false, true, 8}, {true, true, true, true, 15}};
    for (const auto& c : cases) {
        app_.asanEnabled = c.asan, app_.tsanEnabled = c.tsan, app_.gwpAsanEnabled = c.gwp, app_.hwAsanEnabled = c.hwasan;
        EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(app_), Return(true)));
        unsigned char flags = 0xff;
        EXPECT_TRUE(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags).Succeed());
        EXPECT_EQ(flags, c.flags);
    }
    ApplicationInfo system;
    system.uid = 1000;
    system.isSystemApp = true;
    EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
        .WillOnce(DoAll(SetArgReferee<3>(system), Return(true)))
        .WillOnce(DoAll(SetArgReferee<3>(system), Return(true)))
        .WillRepeatedly(Return(false));
    EXPECT_TRUE(PushBundleHelper::GetAppUidForName(MAIL, USER, value_).Succeed());
    EXPECT_EQ(value_, 1000);
    EXPECT_TRUE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_FALSE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_TRUE(HasLine(cap_, "GetApplicationInfo fail, bundleName: com.example.mail, errInfo: "
                              "Get application info fail: error(1000900001)"));
    unsigned char flags = 0xff;
    EXPECT_EQ(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags).GetErr(), 1000900001);
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(PushBundleHelper::GetAppUidForName(MAIL, USER, value_).GetErr(), 1000900001);
    EXPECT_TRUE(HasLine(cap_, "Get Application Info Fail"));
}

TEST_F(BundleQueryTest, AbilityLookupsBuildTheirWantAndTakeTheFirstAbility)
{
    struct Case { const char* name; std::function<PushBaseRsp(AbilityInfo&)> act; std::function<bool(const Want&)> wantIs; };
    const Case cases[] = {
        {"by action", [](auto& i) { return PushBundleHelper::GetAbilityByAction(MAIL, "kavo.action.compose", USER, i); },
         [](const Want& w) { return w.GetAction() == "kavo.action.compose"; }},
        {"by uri", [](auto& i) { return PushBundleHelper::GetAbilityByUri(MAIL, "mailto:", USER, i); },
         [](const Want& w) { return w.GetUriString() == "mailto:"; }},
        {"by name", [](auto& i) { return PushBundleHelper::GetAbilityByName(MAIL, "Compose", USER, i); },
         [](const Want& w) { return w.GetAbilityName() == "Compose"; }},
        {"main: home action and entity", [](auto& i) { return PushBundleHelper::GetMainAbility(MAIL, USER, i); },
         [](const Want& w) { return w.GetAction() == Want::ACTION_HOME && w.HasEntity(Want::ENTITY_HOME); }},
    };
    std::vector<AbilityInfo> two(2);
    two[0].name = "First";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto wantIs = [&c](const Want& w) { return w.GetBundle() == MAIL && c.wantIs(w); };
        EXPECT_CALL(**bms_, QueryAbilityInfosV9(::testing::Truly(wantIs), 0, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(two), Return(0)))
            .WillOnce(Return(0));
        AbilityInfo info;
        EXPECT_TRUE(c.act(info).Succeed());
        EXPECT_EQ(info.name, "First");
        info.name = "kept";
        EXPECT_TRUE(c.act(info).Succeed()) << "an empty answer is still a success";
        EXPECT_EQ(info.name, "kept");
    }
}

TEST_F(BundleQueryTest, ExtensionExistComparesOnlyTheFirstEntryOfTheAppIndex)
{
    auto ext = [](T type, int index) { ExtensionAbilityInfo e; e.type = type, e.appIndex = index; return e; };
    struct Case { const char* name; std::vector<ExtensionAbilityInfo> answer; int32_t code, appIndex, err;
                  std::string desc; };
    const Case cases[] = {
        {"first entry of the type", {ext(T::PUSH, 0)}, 0, 0, 0, ""},
        {"a match after another type does not count", {ext(T::SERVICE, 0), ext(T::PUSH, 0)}, 0, 0, 1000900002, ""},
        {"other clones' entries are dropped first", {ext(T::SERVICE, 1), ext(T::PUSH, 0)}, 0, 0, 0, ""},
        {"the clone's own entry", {ext(T::PUSH, 0), ext(T::PUSH, 2)}, 0, 2, 0, ""},
        {"nothing left for the clone", {ext(T::PUSH, 0)}, 0, 1, 1000900002, ""},
        {"a failed query carries its text", {}, 4, 0, 1000900002, "query extension fail:4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_CALL(**bms_, QueryExtensionAbilityInfosV9(_, 0, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(c.answer), Return(c.code)));
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::ExtensionExist(Want(), USER, T::PUSH, c.appIndex);
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(HasLine(cap_, "extensionInfos is invalid: " + c.desc), c.err != 0);
    }
}

TEST_F(BundleQueryTest, BrowserIsLookedUpForTheFirstForegroundAccount)
{
    struct Case { std::vector<Kavo::AccountSA::ForegroundOsAccount> foreground; int32_t foregroundCode, queryCode;
                  int err; std::string desc, log; };  // queryCode -1: no query expected
    const Case cases[] = {
        {{}, 0, -1, 401, "Ids is empty, unable to get userId", "Ids is empty, unable to get userId"},
        {{}, 3, -1, 1000900001, "get foreground accountId failed 3", "GetForegroundOsAccounts check fail"},
        {{{101, 0}, {100, 0}}, 0, 8521221, 1000900001, "Query ability infos failed:8521221",
         "No available browsers ,errInfo : Query ability infos failed:8521221: error(1000900001)"},
        {{{101, 0}, {100, 0}}, 0, 0, 0, "", ""},
    };
    ScopedAccountService accounts{200};
    auto isBrowserWant = [](const Want& w) {
        return w.GetAction() == "kavo.want.action.viewData" && w.HasEntity("entity.system.browsable") &&
               w.GetUriString() == "https://" && w.GetBundle().empty();
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc);
        EXPECT_CALL(*accounts, GetForegroundOsAccounts(_))
            .WillOnce(DoAll(SetArgReferee<0>(c.foreground), Return(c.foregroundCode)));
        if (c.queryCode >= 0) {
            EXPECT_CALL(**bms_, QueryAbilityInfosV9(::testing::Truly(isBrowserWant), 0, 101, _))
                .WillOnce(Return(c.queryCode));
        }
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::IsBrowserAvailable();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(c.log.empty() || HasLine(cap_, c.log));
    }
}

TEST(BundleTableTest, ExtensionTypeNamesAreExact)
{
    const std::pair<const char*, T> cases[] = {
        {"push", T::PUSH}, {"remoteNotification", T::REMOTE_NOTIFICATION}, {"remoteLocation", T::REMOTE_LOCATION},
        {"voip", T::VOIP}, {"service", T::SERVICE}, {"Push", T::UNSPECIFIED}, {"push ", T::UNSPECIFIED},
    };
    for (const auto& [name, type] : cases) {
        EXPECT_EQ(PushBundleHelper::GetExtensionAbilityType(name), type) << "'" << name << "'";
    }
    EXPECT_TRUE(PushBundleHelper::CheckIsNotClonedApp(0));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(1));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(-1));
}

TEST(NoBundleMgrTest, LookupFailsOnEachMissingPiece)
{
    ScopedReadiness readiness;
    Kavo::LogCapture cap;
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    auto foreign = Kavo::AsRemoteObject<IAppMgr>(Kavo::MakeSptr<MockAppMgr>());
    struct Case { std::function<void()> arrange, restore; std::string desc, log; int inner; };
    const Case cases[] = {
        {[&] { samgr.SetManagerAvailable(false); }, [&] { samgr.SetManagerAvailable(true); }, "get samgr fail",
         "get samgr fail", PushBaseRsp::NOT_SET},
        {[] {}, [] {}, "get bms fail: bms sa not started", "Get bms fail: bms sa not started", PushBaseRsp::NOT_SET},
        {[&] { readiness.Track(BUNDLE_ID, ScopedReadiness::Service::STOPPED); },
         [&] { readiness.Track(BUNDLE_ID, ScopedReadiness::Service::UNKNOWN); }, "get bms fail: bms sa not started",
         "Get bms fail: bms sa not started", Kavo::Push::INNER_ERR_SA_STOPPED},
        {[&] { samgr.AddSystemAbility(BUNDLE_ID, foreign); }, [&] { samgr.RemoveSystemAbility(BUNDLE_ID); },
         "IBundleMgr is null", "IBundleMgr is null", PushBaseRsp::NOT_SET},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc);
        cap.Clear();
        c.arrange();
        std::string name;
        PushBaseRsp rsp = PushBundleHelper::GetNameForUid(1, name);
        c.restore();
        EXPECT_EQ(rsp.GetErr(), 1000900001);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(rsp.GetInnerErr(), c.inner);
        EXPECT_TRUE(HasLine(cap, c.log));
    }
}

}  // namespace
}  // namespace KavoTest
