// The package, process and caller queries against GoogleMock managers: the exact requests, which
// process of a list each query picks, each failure code's texts, and each query's texts when its
// manager cannot be had.
#include "kavo/push/platform/push_bundle_helper.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <optional>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "tests/push/platform/platform_mocks.h"
#include "tests/support/test_support.h"

namespace KavoTest {
namespace {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using S = AppProcessState;
using T = ExtensionAbilityType;

constexpr int USER = 100, UID = 20010042, OTHER = 20010077;
constexpr int32_t BUNDLE_ID = 401, APP_ID = 501;
const std::string MAIL = "com.example.mail";

RunningProcessInfo P(int pid, int uid, S state, ProcessType type = ProcessType::NORMAL, T ext = T::UNSPECIFIED)
{
    RunningProcessInfo p;
    p.pid = pid, p.uid = uid, p.state = state, p.processType = type, p.extensionType = ext;
    return p;
}

RunningProcessInfo E(int pid, int uid, S state, T ext)
{
    return P(pid, uid, state, ProcessType::EXTENSION, ext);
}

// What a missing manager adds: the lookup's text and the two lines logged on the way.
struct Lookup {
    std::string info, line, passOn;
};
const Lookup BMS{"get bms fail: bms sa not started: error(1000900001)", "Get bms fail: bms sa not started",
                 "Get bundle mgr fail: "};
const Lookup AMS{"get ams fail: ams sa not started: error(1000900001)", "get ams fail: ams sa not started",
                 "Get app mgr fail: "};

class BundleQueryTest : public ::testing::Test {
protected:
    BundleQueryTest() { Kavo::IPCSkeleton::SetCallingUid(UID); }
    ~BundleQueryTest() override { Kavo::IPCSkeleton::ResetCallingUid(); }
    void Answer(const std::vector<RunningProcessInfo>& list)
    {
        EXPECT_CALL(**ams_, GetRunningProcessInformation(MAIL, USER, _))
            .WillOnce(DoAll(SetArgReferee<2>(list), Return(0)));
    }

    ScopedReadiness readiness_;
    std::optional<ScopedBundleMgr> bms_{std::in_place, BUNDLE_ID};
    std::optional<ScopedAppMgr> ams_{std::in_place, APP_ID};
    ScopedAccountService accounts_{200};
    Kavo::LogCapture cap_;
    Want want_;
    std::vector<ExtensionAbilityInfo> extensions_;
    std::vector<AbilityInfo> abilities_;
    AbilityInfo ability_;
    ApplicationInfo app_;
    BundleInfo bundle_;
    Kavo::Push::ClientUserInfo caller_;
    std::string name_;
    int value_ = 0, pid_ = 0, state_ = 0;
    bool flag_ = false;
    unsigned char flags_ = 0;
};

// Each query meets its manager answering a failure code, then no manager at all. The log line is
// the description itself unless a row names another ("" none).
TEST_F(BundleQueryTest, FailureCodesAndTheMissingManagerMapToEachQuerysResult)
{
    struct Case {
        std::function<void()> arrange;
        std::function<PushBaseRsp()> act;
        int err;
        std::string desc;
        const Lookup* mgr;
        std::string noMgrLog;
        const char* log = nullptr;
    };
    auto processes6 = [&] { EXPECT_CALL(**ams_, GetRunningProcessInformation(MAIL, USER, _)).WillOnce(Return(6)); };
    const Case cases[] = {
        {[&] { EXPECT_CALL(**bms_, QueryExtensionAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(7)); },
         [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want_, USER, extensions_); }, 1000900002,
         "query extension fail:7", &BMS, "Get Bundle Mgr Fail"},
        {[&] { EXPECT_CALL(**bms_, QueryExtensionAbilityInfosV9(_, T::PUSH, 3, USER, _)).WillOnce(Return(-5)); },
         [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want_, T::PUSH, 3, USER, extensions_); }, 1000900001,
         "Query extension ability info failed:-5", &BMS, "Get Bundle Mgr Fail"},
        {[&] { EXPECT_CALL(**bms_, QueryAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(9)); },
         [&] { return PushBundleHelper::QueryAbilityInfos(want_, USER, abilities_); }, 1000900001,
         "Query ability infos failed:9", &BMS, "get bundle mgr fail", "Query Ability InfosV9 Fail"},
        {[&] { EXPECT_CALL(**bms_, QueryAbilityInfo(_, 4, USER, _)).WillOnce(Return(false)); },
         [&] { return PushBundleHelper::QueryAbilityInfo(want_, 4, USER, ability_); }, 1000900001,
         "query ability info failed", &BMS, "Get Bundle Mgr Fail:" + BMS.info},
        {[&] {
             EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, _)).WillOnce(Return(false));
         },
         [&] { return PushBundleHelper::GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, app_); }, 1000900001,
         "Get application info fail", &BMS, "Get Bundle Mgr Fail"},
        {[&] { EXPECT_CALL(**bms_, GetNameForUid(20010001, _)).WillOnce(Return(8521225)); },
         [&] { return PushBundleHelper::GetNameForUid(20010001, name_); }, 1000900001, "Get name for uid fail: 8521225",
         &BMS, "Get Bundle Mgr Fail"},
        {[&] { EXPECT_CALL(**bms_, GetUidByBundleName(MAIL, USER, 0)).WillOnce(Return(-1)); },
         [&] { return PushBundleHelper::GetUidByBundleName(MAIL, USER, value_, 0); }, 0, "", &BMS,
         "Get Bundle Mgr Fail", ""},  // an unknown bundle's uid -1 is handed back as a success
        {[&] { EXPECT_CALL(**bms_, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(Return(8521220)); },
         [&] { return PushBundleHelper::GetBundleInfoV9(MAIL, USER, bundle_); }, -1, "Get RimoBundleInfo, 8521220",
         &BMS, "GetBundleInfoV9 get bundle mgr fail", "GetBundleInfoV9 failed ret:8521220"},
        {[&] { EXPECT_CALL(**bms_, GetNameAndIndexForUid(20010001, _, _)).WillOnce(Return(12)); },
         [&] { return PushBundleHelper::GetAppIndex(20010001, value_); }, -1, "get appIndex failed:12", &BMS,
         "get bundle mgr fail", "Get appIndex faild: 12"},
        {[&] { EXPECT_CALL(**bms_, IsBundleInstalled(MAIL, USER, 2, _)).WillOnce(Return(5)); },
         [&] { return PushBundleHelper::GetInstalledStatus(MAIL, USER, 2).first; }, -1, "Get install status failed, 5",
         &BMS, "get bundle mgr fail", ""},
        {[&] { EXPECT_CALL(**bms_, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(Return(5)); },
         [&] { return PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value_).first; }, -1,
         "Get install status failed, 5", &BMS, "get bundle mgr fail", ""},
        {[&] { EXPECT_CALL(**bms_, GetNameAndIndexForUid(UID, _, _)).WillOnce(Return(8521225)); },
         [&] { return PushBundleHelper::GetIpcClientUserInfo(caller_); }, -1,
         "get uid, bundle name, appIndex fail:8521225", &BMS, "Get BundleMgr failed, ret: 1000900001",
         "Get uid 20010042, appIndex, bundle name failed, ret:8521225"},
        {[&] {
             EXPECT_CALL(**bms_, GetNameAndIndexForUid(UID, _, _)).WillOnce(Return(0));
             EXPECT_CALL(*accounts_, GetOsAccountLocalIdFromUid(UID, _)).WillOnce(Return(4194323));
         },
         [&] { return PushBundleHelper::GetIpcClientUserInfo(caller_); }, 1000900001,
         "Get accountId local id from uid failed 4194323", &BMS, "Get BundleMgr failed, ret: 1000900001",
         "Get uid 20010042 userId failed, ret 1000900001"},
        {processes6, [&] { return PushBundleHelper::IsAppRunning(MAIL, USER, flag_, 0); }, 1000900001,
         "check if app running, get running process info fail: 6", &AMS, "Get app mgr fail :" + AMS.info,
         "Get running process info fail: :6"},
        {processes6,
         [&] {
             return PushBundleHelper::IsRemoteForegrounding({MAIL, USER, 0, UID}, pid_, flag_, false);
         },
         1000900001, "check if app foreground, get running process info fail: 6", &AMS, "Get App Mgr"},
        {processes6, [&] { return PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid_); }, 1000900001,
         "check if child pid, get running process info fail: 6", &AMS, "Get App Mgr"},
        {processes6, [&] { return PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, pid_); }, 1000900001,
         "check if parent pid, get running process info fail: 6", &AMS, "Get App Mgr"},
        {processes6,
         [&] {
             return PushBundleHelper::GetAppProcessState({MAIL, USER, 0, ""}, state_, flags_);
         },
         1000900001, "get app process state, get running process info fail: 6", &AMS, "Get App Mgr Fail"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);  // the row
        bms_.emplace(BUNDLE_ID);
        ams_.emplace(APP_ID);
        cap_.Clear();
        c.arrange();
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(c.log == nullptr ? HasLine(cap_, c.desc) : (!*c.log || HasLine(cap_, c.log)));
        bms_.reset();
        ams_.reset();
        cap_.Clear();
        EXPECT_EQ(c.act().GetInfo(), c.mgr->info);
        EXPECT_TRUE(HasLine(cap_, c.mgr->line) && HasLine(cap_, c.mgr->passOn + c.mgr->info) &&
                    HasLine(cap_, c.noMgrLog));
    }
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value_).second, -1);
    EXPECT_EQ(std::make_pair(state_, pid_), std::make_pair(-1, INT_MIN));
    int ret = 3;
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 0, ret).name.empty());
    EXPECT_EQ(ret, 3) << "no manager: the code is left as it was";
    bms_.emplace(BUNDLE_ID);
    EXPECT_CALL(**bms_, GetNameAndIndexForUid(_, _, _)).WillRepeatedly(Return(12));
    EXPECT_EQ(PushBundleHelper::GetAppIndex(1, value_).GetInnerErr(), Kavo::Push::INNER_ERR_CLIENT_INFO_REFUSED);
    EXPECT_EQ(PushBundleHelper::GetIpcClientUserInfo(caller_).GetInnerErr(), Kavo::Push::INNER_ERR_CLIENT_INFO_REFUSED);
    // The extension check answers false either way, with an exception report instead of a result.
    ReportRecorder reports;
    ams_.emplace(APP_ID);
    EXPECT_CALL(**ams_, GetRunningProcessInformation(MAIL, USER, _)).WillOnce(Return(6));
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    samgr.SetManagerAvailable(true);
    EXPECT_EQ(reports.Reports(),
              (std::vector<std::pair<int, std::string>>{
                  {100002017, "get running process information ret(6)"},
                  {100002017, "Get app mgr fail :get app mgr fail: get samgr fail: error(1000900001)"}}));
}

TEST_F(BundleQueryTest, CloneRecordFailureHandsBackTheCode)
{
    EXPECT_CALL(**bms_, GetCloneBundleInfo(MAIL, 1, 3, _, USER)).WillOnce(Return(8521290));
    int ret = 0;
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 3, ret).name.empty());
    EXPECT_EQ(ret, 8521290);
    EXPECT_TRUE(HasLine(cap_, "Get clone bundle info com.example.mail failed: 8521290"));
}

TEST_F(BundleQueryTest, ApplicationRecordFeedsUidSystemFlagAndCheckerBits)
{
    struct Case {
        bool asan, tsan, gwp, hwasan;
        unsigned char flags;
    };
    const Case cases[] = {{false, false, false, false, 0},
                          {true, false, false, false, 1},
                          {false, false, false, true, 8},
                          {true, true, true, true, 15}};
    for (const auto& c : cases) {
        app_.asanEnabled = c.asan, app_.tsanEnabled = c.tsan;
        app_.gwpAsanEnabled = c.gwp, app_.hwAsanEnabled = c.hwasan;
        EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(app_), Return(true)));
        EXPECT_TRUE(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags_).Succeed());
        EXPECT_EQ(flags_, c.flags);
    }
    EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, _)).WillRepeatedly(Return(false));
    EXPECT_FALSE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_TRUE(HasLine(cap_, "GetApplicationInfo fail, bundleName: com.example.mail, errInfo: "
                              "Get application info fail: error(1000900001)"));
    flags_ = 0xff;
    EXPECT_EQ(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags_).GetErr(), 1000900001);
    EXPECT_EQ(flags_, 0);
    EXPECT_EQ(PushBundleHelper::GetAppUidForName(MAIL, USER, value_).GetErr(), 1000900001);
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
    struct Case {
        std::vector<Kavo::AccountSA::ForegroundOsAccount> foreground;
        int32_t foregroundCode, queryCode;
        int err;
        std::string desc, log;
    };  // queryCode -1: no query expected
    const Case cases[] = {
        {{}, 0, -1, 401, "Ids is empty, unable to get userId", "Ids is empty, unable to get userId"},
        {{}, 3, -1, 1000900001, "get foreground accountId failed 3", "GetForegroundOsAccounts check fail"},
        {{{101, 0}, {100, 0}},
         0,
         8521221,
         1000900001,
         "Query ability infos failed:8521221",
         "No available browsers ,errInfo : Query ability infos failed:8521221: error(1000900001)"},
    };
    auto isBrowserWant = [](const Want& w) {
        return w.GetAction() == "kavo.want.action.viewData" && w.HasEntity("entity.system.browsable") &&
               w.GetUriString() == "https://" && w.GetBundle().empty();
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc);
        EXPECT_CALL(*accounts_, GetForegroundOsAccounts(_))
            .WillOnce(DoAll(SetArgReferee<0>(c.foreground), Return(c.foregroundCode)));
        if (c.queryCode >= 0) {
            EXPECT_CALL(**bms_, QueryAbilityInfosV9(::testing::Truly(isBrowserWant), 0, 101, _))
                .WillOnce(Return(c.queryCode));
        }
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::IsBrowserAvailable();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(HasLine(cap_, c.log));
    }
}

TEST(BundleTableTest, ExtensionTypeNamesAreExact)
{
    const std::pair<const char*, T> cases[] = {
        {"push", T::PUSH},
        {"remoteNotification", T::REMOTE_NOTIFICATION},
        {"remoteLocation", T::REMOTE_LOCATION},
        {"voip", T::VOIP},
        {"service", T::SERVICE},
        {"Push", T::UNSPECIFIED},
        {"push ", T::UNSPECIFIED},
    };
    for (const auto& [name, type] : cases) {
        EXPECT_EQ(PushBundleHelper::GetExtensionAbilityType(name), type) << "'" << name << "'";
    }
    EXPECT_TRUE(PushBundleHelper::CheckIsNotClonedApp(0));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(1));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(-1));
}

TEST(NoBundleMgrTest, StoppedManagerNoRegistryAndAnotherInterface)
{
    ScopedReadiness readiness;
    readiness.Track(BUNDLE_ID, ScopedReadiness::Service::STOPPED);
    std::string name;
    PushBaseRsp stopped = PushBundleHelper::GetNameForUid(1, name);
    EXPECT_EQ(stopped.GetErrDescription(), "get bms fail: bms sa not started");
    EXPECT_EQ(stopped.GetInnerErr(), Kavo::Push::INNER_ERR_SA_STOPPED);
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    EXPECT_EQ(PushBundleHelper::GetNameForUid(1, name).GetErrDescription(), "get samgr fail");
    samgr.SetManagerAvailable(true);
    ScopedAppMgr foreign{BUNDLE_ID};
    Kavo::LogCapture cap;
    EXPECT_EQ(PushBundleHelper::GetNameForUid(1, name).GetErrDescription(), "IBundleMgr is null");
    EXPECT_TRUE(HasLine(cap, "IBundleMgr is null"));
}

enum Query { FOREGROUND, FOREGROUND_EXTENSION, CHILD, PARENT };

// What a pid query hands back: "fg"/"bg" and the pid for the foreground walk, else the pid.
std::string Ask(Query q)
{
    int pid = -7;
    bool fg = false;
    PushBaseRsp rsp = q == CHILD    ? PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid)
                      : q == PARENT ? PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, pid)
                                    : PushBundleHelper::IsRemoteForegrounding({MAIL, USER, 0, UID}, pid, fg,
                                                                              q == FOREGROUND_EXTENSION);
    EXPECT_TRUE(rsp.Succeed());
    return (q < CHILD ? (fg ? "fg " : "bg ") : "") + std::to_string(pid);
}

TEST_F(BundleQueryTest, PidQueriesPickTheirProcessByKindUidAndState)
{
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        Query query;
        std::string expected;
    };
    const std::vector<RunningProcessInfo> bgFg = {P(10, UID, S::BACKGROUND), P(11, UID, S::FOREGROUND)};
    const std::string none = std::to_string(INT_MIN);
    const Case cases[] = {
        {"foreground process after a background one", bgFg, FOREGROUND, "fg 11"},
        {"asked for the extension: pid untouched", bgFg, FOREGROUND_EXTENSION, "fg -7"},
        {"focused counts as foreground", {P(12, UID, S::FOCUSED)}, FOREGROUND, "fg 12"},
        {"other uids are skipped", {P(13, OTHER, S::FOREGROUND)}, FOREGROUND, "bg -7"},
        {"the last background main process wins",
         {P(14, UID, S::BACKGROUND), P(15, UID, S::READY)},
         FOREGROUND,
         "bg 15"},
        {"extension: only the remote-notification one sets the pid",
         {E(16, UID, S::BACKGROUND, T::PUSH), E(17, UID, S::BACKGROUND, T::REMOTE_NOTIFICATION),
          P(18, UID, S::BACKGROUND)},
         FOREGROUND_EXTENSION,
         "bg 17"},
        {"extension found before a foreground process keeps its pid",
         {E(19, UID, S::BACKGROUND, T::REMOTE_NOTIFICATION), P(20, UID, S::FOREGROUND)},
         FOREGROUND_EXTENSION,
         "fg 19"},
        {"the walk stops at the foreground process",
         {P(21, UID, S::FOREGROUND), P(22, UID, S::BACKGROUND)},
         FOREGROUND,
         "fg 21"},
        {"child: type, extension type and uid must all match",
         {E(30, OTHER, S::READY, T::PUSH), E(31, UID, S::READY, T::VOIP), E(32, UID, S::READY, T::PUSH),
          E(33, UID, S::READY, T::PUSH)},
         CHILD,
         "32"},
        {"child: a normal process is no child", {P(34, UID, S::READY, ProcessType::NORMAL, T::PUSH)}, CHILD, none},
        {"parent: extensions of the uid are passed over",
         {E(35, UID, S::READY, T::PUSH), P(36, OTHER, S::READY), P(37, UID, S::READY), P(38, UID, S::READY)},
         PARENT,
         "37"},
    };
    for (const auto& c : cases) {
        Answer(c.list);
        EXPECT_EQ(Ask(c.query), c.expected) << c.name;
    }
}

TEST_F(BundleQueryTest, RunningAndStateChecksCompareTheCloneUidOrTheExtension)
{
    // IsAppRunning for app index 1, IsGivenExtensionProcessRunning for PUSH, GetAppProcessState for the
    // extension name ("" the main process).
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        bool running, pushRunning;
        std::string extension;
        int state;
    };
    const Case cases[] = {
        {"nothing runs: no uid lookup", {}, false, false, "", -1},
        {"the main process's state", {E(50, UID, S::READY, T::PUSH), P(51, UID, S::FOCUSED)}, true, true, "", 3},
        {"the named extension's state",
         {P(52, UID, S::FOREGROUND), E(53, UID, S::BACKGROUND, T::VOIP)},
         true,
         false,
         "voip",
         4},
        {"another uid: only its push extension counts", {E(41, OTHER, S::READY, T::PUSH)}, false, true, "", -1},
        {"an unknown extension name matches nothing",
         {E(55, UID, S::READY, T::REMOTE_NOTIFICATION)},
         true,
         false,
         "Push",
         -1},
    };
    app_.tsanEnabled = true;
    ON_CALL(**bms_, GetUidByBundleName(MAIL, USER, _)).WillByDefault(Return(UID));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int lookups = c.list.empty() ? 0 : 1;
        Answer(c.list);
        EXPECT_CALL(**bms_, GetUidByBundleName(MAIL, USER, 1)).Times(lookups);
        flag_ = !c.running;
        EXPECT_TRUE(PushBundleHelper::IsAppRunning(MAIL, USER, flag_, 1).Succeed());
        EXPECT_EQ(flag_, c.running);
        Answer(c.list);
        EXPECT_EQ(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH), c.pushRunning);
        Answer(c.list);
        EXPECT_CALL(**bms_, GetUidByBundleName(MAIL, USER, 0)).Times(lookups);
        EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, APPLICATION_INFO_BASIC, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(app_), Return(true)));
        state_ = 9;
        EXPECT_TRUE(PushBundleHelper::GetAppProcessState({MAIL, USER, 0, c.extension}, state_, flags_).Succeed());
        EXPECT_EQ(state_, c.state);
        EXPECT_EQ(flags_, 2) << "the checker flags are read whatever runs";
    }
}

}  // namespace
}  // namespace KavoTest
