// The package, process and caller queries against GoogleMock managers.
#include "kavo/push/platform/push_bundle_helper.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "tests/push/platform/bundle_query_fixture.h"

namespace KavoTest {
namespace {

TEST_F(BundleQueryTest, FailureCodesAndTheMissingManagerMapToEachQuerysResult)
{
    struct Case {
        std::function<void()> refuse;  // the manager answers a failure
        std::function<PushBaseRsp()> query;
        int err;
        std::string desc;
        std::string line;  // the line logged, when it is not the description itself
        const Lookup* manager;
        std::string noManagerLog;  // the query's own line when its manager cannot be had
        Kavo::LogLevel level = Kavo::LEVEL_ERROR;
    };
// The manager expectation answering `code` once, and the query as a callable.
#define BMS_ANSWERS(call, code) [&] { EXPECT_CALL(**bms_, call).WillOnce(Return(code)); }
#define ASK(call) [&] { return PushBundleHelper::call; }
    auto processes6 = [&] { EXPECT_CALL(**ams_, ListRunningProcesses(MAIL, USER, _)).WillOnce(Return(6)); };
    const Case cases[] = {
        {BMS_ANSWERS(FindExtensionAbilities(_, 0, USER, _), 7),
         ASK(QueryExtensionAbilityInfos(want_, USER, extensions_)), 1000900002, "query extension fail:7", "", &BMS,
         "Get Bundle Mgr Fail"},
        {BMS_ANSWERS(FindExtensionAbilities(_, T::PUSH, 3, USER, _), -5),
         ASK(QueryExtensionAbilityInfos(want_, T::PUSH, 3, USER, extensions_)), 1000900001,
         "Query extension ability info failed:-5", "", &BMS, "Get Bundle Mgr Fail"},
        {BMS_ANSWERS(FindAbilities(_, 0, USER, _), 9), ASK(QueryAbilityInfos(want_, USER, abilities_)), 1000900001,
         "Query ability infos failed:9", "Query Ability InfosV9 Fail", &BMS, "get bundle mgr fail"},
        {BMS_ANSWERS(QueryAbilityInfo(_, 4, USER, _), false), ASK(QueryAbilityInfo(want_, 4, USER, ability_)),
         1000900001, "query ability info failed", "", &BMS, "Get Bundle Mgr Fail:" + BMS.info},
        {BMS_ANSWERS(GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, _), false),
         ASK(GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, app_)), 1000900001, "Get application info fail", "",
         &BMS, "Get Bundle Mgr Fail"},
        {BMS_ANSWERS(GetNameForUid(20010001, _), 8521225), ASK(GetNameForUid(20010001, name_)), 1000900001,
         "Get name for uid fail: 8521225", "", &BMS, "Get Bundle Mgr Fail"},
        {BMS_ANSWERS(GetUidByBundleName(MAIL, USER, 0), -1), ASK(GetUidByBundleName(MAIL, USER, uid_, 0)), 0, "", "",
         &BMS, "Get Bundle Mgr Fail"},  // an unknown bundle's uid -1 is handed back as a success
        {BMS_ANSWERS(GetBundleInfoV9(MAIL, 1, _, USER), 8521220), ASK(GetBundleInfoV9(MAIL, USER, bundle_)), -1,
         "Get RimoBundleInfo, 8521220", "GetBundleInfoV9 failed ret:8521220", &BMS,
         "GetBundleInfoV9 get bundle mgr fail", Kavo::LEVEL_WARN},
        {BMS_ANSWERS(GetBundleNameAndCloneIndex(20010001, _, _), 12), ASK(GetAppIndex(20010001, uid_)), -1,
         "get appIndex failed:12", "Get appIndex faild: 12", &BMS, "get bundle mgr fail"},
        {BMS_ANSWERS(CheckBundleInstalled(MAIL, USER, 2, _), 5), ASK(GetInstalledStatus(MAIL, USER, 2).first), -1,
         "Get install status failed, 5", "", &BMS, "get bundle mgr fail"},
        {BMS_ANSWERS(GetBundleInfoV9(MAIL, 1, _, USER), 5), ASK(GetInstalledStatusV9(MAIL, USER, uid_).first), -1,
         "Get install status failed, 5", "GetInstalledStatusV9 failed ret:5", &BMS, "get bundle mgr fail"},
        {BMS_ANSWERS(GetBundleNameAndCloneIndex(UID, _, _), 8521225), ASK(GetIpcClientUserInfo(caller_)), -1,
         "get uid, bundle name, appIndex fail:8521225", "Get uid 20010042, appIndex, bundle name failed, ret:8521225",
         &BMS, "Get BundleMgr failed, ret: 1000900001", Kavo::LEVEL_WARN},
        {[&] {
             EXPECT_CALL(**bms_, GetBundleNameAndCloneIndex(UID, _, _)).WillOnce(Return(0));
             EXPECT_CALL(*accounts_, GetOsAccountLocalIdFromUid(UID, _)).WillOnce(Return(4194323));
         },
         ASK(GetIpcClientUserInfo(caller_)), 1000900001, "Get accountId local id from uid failed 4194323",
         "Get uid 20010042 userId failed, ret 1000900001", &BMS, "Get BundleMgr failed, ret: 1000900001"},
        {processes6, ASK(IsAppRunning(MAIL, USER, flag_, 0)), 1000900001,
         "check if app running, get running process info fail: 6", "Get running process info fail: :6", &AMS,
         "Get app mgr fail :" + AMS.info},
        {processes6, ASK(IsRemoteForegrounding({MAIL, USER, 0, UID}, pid_, flag_, false)), 1000900001,
         "check if app foreground, get running process info fail: 6", "", &AMS, "Get App Mgr"},
        {processes6, ASK(GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid_)), 1000900001,
         "check if child pid, get running process info fail: 6", "", &AMS, "Get App Mgr"},
        {processes6, ASK(GetParentProcessPid(MAIL, USER, UID, pid_)), 1000900001,
         "check if parent pid, get running process info fail: 6", "", &AMS, "Get App Mgr"},
        {processes6, ASK(GetAppProcessState({MAIL, USER, 0, ""}, state_, flags_)), 1000900001,
         "get app process state, get running process info fail: 6", "", &AMS, "Get App Mgr Fail"},
    };
#undef BMS_ANSWERS
#undef ASK
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc + " (" + c.noManagerLog + ")");
        bms_.emplace(BUNDLE_ID);
        ams_.emplace(APP_ID);
        cap_.Clear();
        c.refuse();
        PushBaseRsp rsp = c.query();
        EXPECT_EQ(std::make_pair(int(rsp.GetErr()), rsp.GetErrDescription()), std::make_pair(c.err, c.desc));
        EXPECT_TRUE(c.err == 0 ? LogLines(cap_, Kavo::LEVEL_INFO).empty()
                               : HasLine(cap_, c.line.empty() ? c.desc : c.line, c.level));
        bms_.reset();
        ams_.reset();
        cap_.Clear();
        EXPECT_EQ(c.query().GetInfo(), c.manager->info);
        EXPECT_TRUE(HasLine(cap_, c.manager->line) && HasLine(cap_, c.manager->passOn + c.manager->info) &&
                    HasLine(cap_, c.noManagerLog));
    }
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9(MAIL, USER, uid_).second, -1);
    EXPECT_EQ(std::make_pair(state_, pid_), std::make_pair(-1, INT_MIN));
    int ret = 3;
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 0, ret).name.empty());
    EXPECT_EQ(ret, 3) << "no manager: the code is left as it was";
    bms_.emplace(BUNDLE_ID);
    EXPECT_CALL(**bms_, GetCloneRecord(MAIL, 1, 3, _, USER)).WillOnce(Return(8521290));
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 3, ret).name.empty());
    EXPECT_EQ(ret, 8521290) << "a refused clone record hands back the code";
    EXPECT_TRUE(HasLine(cap_, "Get clone bundle info com.example.mail failed: 8521290"));
    EXPECT_CALL(**bms_, GetBundleNameAndCloneIndex(_, _, _)).WillRepeatedly(Return(12));
    EXPECT_EQ(PushBundleHelper::GetAppIndex(1, uid_).GetInnerErr(), Kavo::Push::INNER_ERR_CLIENT_INFO_REFUSED);
    EXPECT_EQ(PushBundleHelper::GetIpcClientUserInfo(caller_).GetInnerErr(), Kavo::Push::INNER_ERR_CLIENT_INFO_REFUSED);
    // The extension check answers false either way, with an exception report instead of a result.
    ReportRecorder reports;
    ams_.emplace(APP_ID);
    EXPECT_CALL(**ams_, ListRunningProcesses(MAIL, USER, _)).WillOnce(Return(6));
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    samgr.SetManagerAvailable(true);
    EXPECT_EQ(reports.Reports(),
              (ReportRecorder::Reported{
                  {100002017, "get running process information ret(6)"},
                  {100002017, "Get app mgr fail :get app mgr fail: get samgr fail: error(1000900001)"}}));
}

TEST_F(BundleQueryTest, TracesAndWarningsKeepTheirLevels)
{
    bundle_.uid = UID;
    EXPECT_CALL(**bms_, GetBundleInfoV9(MAIL, 1, _, USER))
        .Times(2)
        .WillRepeatedly(DoAll(SetArgReferee<2>(bundle_), Return(0)));
    EXPECT_CALL(**bms_, GetBundleNameAndCloneIndex(UID, _, _)).WillOnce(Return(0));
    EXPECT_CALL(*accounts_, GetOsAccountLocalIdFromUid(UID, _)).WillOnce(Return(0));
    EXPECT_TRUE(PushBundleHelper::GetBundleInfoV9(MAIL, USER, bundle_).Succeed());
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9(MAIL, USER, uid_).second, 1);
    EXPECT_TRUE(PushBundleHelper::GetIpcClientUserInfo(caller_).Succeed());
    EXPECT_EQ(PushBundleHelper::GetCurrBundle(name_).GetErrDescription(), "Get ability context failed");
    EXPECT_EQ(LogLines(cap_, Kavo::LEVEL_INFO),
              (std::vector<std::string>{"I GetBundleInfoV9 start, bundleName:com.example.mail",
                                        "I GetBundleInfoV9 end, bundleName:com.example.mail",
                                        "I GetInstalledStatusV9 start, bundleName:com.example.mail",
                                        "I GetInstalledStatusV9 bundle is installed, bundleName:com.example.mail",
                                        "I GetCallingUid uid: 20010042", "I Get clientUserInfo succeed",
                                        "W Get ability context failed"}));
    EXPECT_EQ(uid_, UID);
}

TEST_F(BundleQueryTest, ApplicationRecordFeedsUidSystemFlagAndCheckerBits)
{
    // asan, tsan, gwp-asan and hwasan enabled, and the checker flags they give.
    const std::tuple<bool, bool, bool, bool, int> cases[] = {{false, true, true, true, 14},
                                                             {true, false, false, true, 9}};
    for (const auto& [asan, tsan, gwp, hwasan, flags] : cases) {
        app_.asanEnabled = asan, app_.tsanEnabled = tsan;
        app_.gwpAsanEnabled = gwp, app_.hwAsanEnabled = hwasan;
        EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(app_), Return(true)));
        EXPECT_TRUE(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags_).Succeed());
        EXPECT_EQ(flags_, flags);
    }
    EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, _)).WillRepeatedly(Return(false));
    EXPECT_FALSE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_TRUE(HasLine(cap_, "GetApplicationInfo fail, bundleName: com.example.mail, errInfo: "
                              "Get application info fail: error(1000900001)"));
    flags_ = 0xff;
    EXPECT_EQ(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags_).GetErr(), 1000900001);
    EXPECT_EQ(flags_, 0);
    EXPECT_EQ(PushBundleHelper::GetAppUidForName(MAIL, USER, uid_).GetErr(), 1000900001);
    EXPECT_TRUE(HasLine(cap_, "Get Application Info Fail"));
}

TEST_F(BundleQueryTest, ExtensionExistComparesOnlyTheFirstEntryOfTheAppIndex)
{
    auto ext = [](T type, int index) {
        ExtensionAbilityInfo e;
        e.type = type, e.appIndex = index;
        return e;
    };
    struct Case {
        const char* name;
        std::vector<ExtensionAbilityInfo> answer;
        int32_t code, appIndex, err;
        std::string desc;
    };
    const Case cases[] = {
        {"a match after another type does not count", {ext(T::SERVICE, 0), ext(T::PUSH, 0)}, 0, 0, 1000900002, ""},
        {"other clones' entries are dropped first", {ext(T::SERVICE, 1), ext(T::PUSH, 0)}, 0, 0, 0, ""},
        {"nothing left for the clone", {ext(T::PUSH, 0)}, 0, 1, 1000900002, ""},
        {"a failed query carries its text", {}, 4, 0, 1000900002, "query extension fail:4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_CALL(**bms_, FindExtensionAbilities(_, 0, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(c.answer), Return(c.code)));
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::ExtensionExist(Want(), USER, T::PUSH, c.appIndex);
        EXPECT_EQ(std::make_pair(int(rsp.GetErr()), rsp.GetErrDescription()), std::make_pair(c.err, c.desc));
        EXPECT_EQ(HasLine(cap_, "extensionInfos is invalid: " + c.desc), c.err != 0);
    }
}

// An ability query takes the first answer, and only from a query that succeeded with one.
TEST_F(BundleQueryTest, AbilityQueryTakesTheFirstAnswerOfASuccess)
{
    AbilityInfo first, second;
    first.name = "First", second.name = "Second";
    const std::tuple<std::vector<AbilityInfo>, int32_t, std::string> cases[] = {
        {{first, second}, 0, "First"}, {{}, 0, "kept"}, {{first}, 9, "kept"}};
    for (const auto& [answer, code, name] : cases) {
        EXPECT_CALL(**bms_, FindAbilities(_, 0, USER, _)).WillOnce(DoAll(SetArgReferee<3>(answer), Return(code)));
        ability_.name = "kept";
        PushBundleHelper::GetMainAbility(MAIL, USER, ability_);
        EXPECT_EQ(ability_.name, name) << code;
    }
}

TEST_F(BundleQueryTest, BrowserIsLookedUpForTheFirstForegroundAccount)
{
    struct Case {
        std::vector<Kavo::AccountSA::ForegroundOsAccount> foreground;
        int32_t foregroundCode, queryCode;  // queryCode -1: no query expected
        int err;
        std::string desc, log;
    };
    const std::string noBrowser =
        "No available browsers ,errInfo : Query ability infos failed:8521221: error(1000900001)";
    const Case cases[] = {
        {{}, 0, -1, 401, "Ids is empty, unable to get userId", "Ids is empty, unable to get userId"},
        {{}, 3, -1, 1000900001, "get foreground accountId failed 3", "GetForegroundOsAccounts check fail"},
        {{{101, 0}, {100, 0}}, 0, 8521221, 1000900001, "Query ability infos failed:8521221", noBrowser}};
    auto isBrowserWant = [](const Want& w) {
        return w.GetAction() == "kavo.want.action.viewData" && w.HasEntity("entity.system.browsable") &&
               w.GetUriString() == "https://" && w.GetBundle().empty();
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc);
        EXPECT_CALL(*accounts_, GetForegroundOsAccounts(_))
            .WillOnce(DoAll(SetArgReferee<0>(c.foreground), Return(c.foregroundCode)));
        if (c.queryCode >= 0) {
            EXPECT_CALL(**bms_, FindAbilities(::testing::Truly(isBrowserWant), 0, 101, _))
                .WillOnce(Return(c.queryCode));
        }
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::IsBrowserAvailable();
        EXPECT_EQ(std::make_pair(int(rsp.GetErr()), rsp.GetErrDescription()), std::make_pair(c.err, c.desc));
        EXPECT_TRUE(HasLine(cap_, c.log));
    }
}

TEST(BundleTableTest, ExtensionTypeNamesAreExact)
{
    const std::pair<const char*, T> cases[] = {{"push", T::PUSH},
                                               {"remoteNotification", T::REMOTE_NOTIFICATION},
                                               {"remoteLocation", T::REMOTE_LOCATION},
                                               {"voip", T::VOIP},
                                               {"service", T::SERVICE},
                                               {"Push", T::UNSPECIFIED}};
    for (const auto& [name, type] : cases) {
        EXPECT_EQ(PushBundleHelper::GetExtensionAbilityType(name), type) << "'" << name << "'";
    }
    EXPECT_TRUE(PushBundleHelper::CheckIsNotClonedApp(0) && !PushBundleHelper::CheckIsNotClonedApp(1) &&
                !PushBundleHelper::CheckIsNotClonedApp(-1));
}

// The lookup runs through the task runner under the manager's own id: tracked as started, its
// absence is the call's own failure, returned without a wait.
TEST(NoBundleMgrTest, StartedButAbsentManagerNoRegistryAndAnotherInterface)
{
    ScopedReadiness readiness;
    readiness.Track(BUNDLE_ID, ScopedReadiness::Service::STARTED);
    std::string name;
    EXPECT_EQ(PushBundleHelper::GetNameForUid(1, name).GetInnerErr(), Kavo::Push::INNER_ERR_SA_INVOKE_FAILED);
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    EXPECT_EQ(PushBundleHelper::GetNameForUid(1, name).GetErrDescription(), "get samgr fail");
    samgr.SetManagerAvailable(true);
    ScopedAppMgr foreign{BUNDLE_ID};
    Kavo::LogCapture cap;
    EXPECT_EQ(PushBundleHelper::GetNameForUid(1, name).GetErrDescription(), "IBundleMgr is null");
    EXPECT_TRUE(HasLine(cap, "IBundleMgr is null"));
}

}  // namespace
}  // namespace KavoTest
