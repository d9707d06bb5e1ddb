// The process and caller queries against GoogleMock application, package and account services:
// which process of a list each query picks, and each failure's texts.
#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "tests/push/platform/platform_mocks.h"
#include "tests/support/test_support.h"

namespace KavoTest {
namespace {

using Kavo::Push::ClientUserInfo;
using Kavo::Push::ProcessInfo;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using S = AppProcessState;
using T = ExtensionAbilityType;
using Reports = std::vector<std::pair<int, std::string>>;

constexpr int USER = 100, UID = 20010042, OTHER = 20010077;
const std::string MAIL = "com.example.mail";

RunningProcessInfo P(int pid, int uid, S state, ProcessType type = ProcessType::NORMAL, T ext = T::UNSPECIFIED)
{
    RunningProcessInfo p;
    p.pid = pid, p.uid = uid, p.state = state, p.processType = type, p.extensionType = ext;
    return p;
}

RunningProcessInfo E(int pid, int uid, S state, T ext) { return P(pid, uid, state, ProcessType::EXTENSION, ext); }

class ProcessQueryTest : public ::testing::Test {
protected:
    void Answer(const std::vector<RunningProcessInfo>& list, int32_t code = 0)
    {
        EXPECT_CALL(*ams_, GetRunningProcessInformation(MAIL, USER, _))
            .WillOnce(DoAll(SetArgReferee<2>(list), Return(code)));
    }

    ScopedReadiness readiness_;
    ScopedAppMgr ams_{501};
    ScopedBundleMgr bms_{401};
    Kavo::LogCapture cap_;
    int pid_ = -7, state_ = 9;
    bool flag_ = false;
    unsigned char flags_ = 0;
};

TEST_F(ProcessQueryTest, ForegroundWalkPicksThePidByProcessKind)
{
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        bool isExtension, foreground;
        int pid;
    };
    const Case cases[] = {
        {"foreground process after a background one",
         {P(10, UID, S::APP_STATE_BACKGROUND), P(11, UID, S::APP_STATE_FOREGROUND)}, false, true, 11},
        {"asked for the extension: pid untouched",
         {P(10, UID, S::APP_STATE_BACKGROUND), P(11, UID, S::APP_STATE_FOREGROUND)}, true, true, -7},
        {"focused counts as foreground", {P(12, UID, S::APP_STATE_FOCUS)}, false, true, 12},
        {"other uids are skipped", {P(13, OTHER, S::APP_STATE_FOREGROUND)}, false, false, -7},
        {"the last background main process wins",
         {P(14, UID, S::APP_STATE_BACKGROUND), P(15, UID, S::APP_STATE_READY)}, false, false, 15},
        {"extension: only the remote-notification one sets the pid",
         {E(16, UID, S::APP_STATE_BACKGROUND, T::PUSH), E(17, UID, S::APP_STATE_BACKGROUND, T::REMOTE_NOTIFICATION),
          P(18, UID, S::APP_STATE_BACKGROUND)}, true, false, 17},
        {"extension found before a foreground process keeps its pid",
         {E(19, UID, S::APP_STATE_BACKGROUND, T::REMOTE_NOTIFICATION), P(20, UID, S::APP_STATE_FOREGROUND)}, true,
         true, 19},
        {"the walk stops at the foreground process",
         {P(21, UID, S::APP_STATE_FOREGROUND), P(22, UID, S::APP_STATE_BACKGROUND)}, false, true, 21},
        {"terminated is not foreground", {E(23, UID, S::APP_STATE_TERMINATED, T::PUSH)}, false, false, -7},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Answer(c.list);
        int pid = -7;
        bool foreground = !c.foreground;
        EXPECT_TRUE(PushBundleHelper::IsRemoteForegrounding({MAIL, USER, 0, UID}, pid, foreground, c.isExtension)
                        .Succeed());
        EXPECT_EQ(foreground, c.foreground);
        EXPECT_EQ(pid, c.pid);
    }
}

TEST_F(ProcessQueryTest, ParentAndChildPidsComeFromTheFirstMatchingProcess)
{
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        bool child;
        int pid;
    };
    const Case cases[] = {
        {"child: type, extension type and uid must all match",
         {E(30, OTHER, S::APP_STATE_READY, T::PUSH), E(31, UID, S::APP_STATE_READY, T::VOIP),
          E(32, UID, S::APP_STATE_READY, T::PUSH), E(33, UID, S::APP_STATE_READY, T::PUSH)}, true, 32},
        {"child: a normal process is no child", {P(34, UID, S::APP_STATE_READY, ProcessType::NORMAL, T::PUSH)}, true,
         INT_MIN},
        {"parent: extensions of the uid are passed over",
         {E(35, UID, S::APP_STATE_READY, T::PUSH), P(36, OTHER, S::APP_STATE_READY), P(37, UID, S::APP_STATE_READY),
          P(38, UID, S::APP_STATE_READY)}, false, 37},
        {"parent: none of the uid", {P(39, OTHER, S::APP_STATE_READY)}, false, INT_MIN},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Answer(c.list);
        int pid = 5;
        EXPECT_TRUE((c.child ? PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid)
                             : PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, pid)).Succeed());
        EXPECT_EQ(pid, c.pid);
    }
}

TEST_F(ProcessQueryTest, RunningAndStateChecksCompareTheCloneUidOrTheExtension)
{
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        bool running, pushRunning;  // IsAppRunning for app index 1; IsGivenExtensionProcessRunning for PUSH
        std::string extension;
        int state;  // GetAppProcessState for that extension name ("" the main process)
    };
    const Case cases[] = {
        {"nothing runs: no uid lookup", {}, false, false, "", -1},
        {"the main process's state", {E(50, UID, S::APP_STATE_READY, T::PUSH), P(51, UID, S::APP_STATE_FOCUS)}, true,
         true, "", 3},
        {"the named extension's state", {P(52, UID, S::APP_STATE_FOREGROUND), E(53, UID, S::APP_STATE_BACKGROUND, T::VOIP)},
         true, false, "voip", 4},
        {"another uid: only its push extension counts", {E(41, OTHER, S::APP_STATE_READY, T::PUSH)}, false, true, "",
         -1},
        {"an unknown extension name matches nothing", {E(55, UID, S::APP_STATE_READY, T::REMOTE_NOTIFICATION)}, true,
         false, "Push", -1},
    };
    ApplicationInfo record;
    record.tsanEnabled = true;
    ON_CALL(*bms_, GetUidByBundleName(MAIL, USER, _)).WillByDefault(Return(UID));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int lookups = c.list.empty() ? 0 : 1;
        Answer(c.list);
        EXPECT_CALL(*bms_, GetUidByBundleName(MAIL, USER, 1)).Times(lookups);
        bool running = !c.running;
        EXPECT_TRUE(PushBundleHelper::IsAppRunning(MAIL, USER, running, 1).Succeed());
        EXPECT_EQ(running, c.running);
        Answer(c.list);
        EXPECT_EQ(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH), c.pushRunning);
        Answer(c.list);
        EXPECT_CALL(*bms_, GetUidByBundleName(MAIL, USER, 0)).Times(lookups);
        EXPECT_CALL(*bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(record), Return(true)));
        int state = 9;
        unsigned char flags = 0;
        EXPECT_TRUE(PushBundleHelper::GetAppProcessState({MAIL, USER, 0, c.extension}, state, flags).Succeed());
        EXPECT_EQ(state, c.state);
        EXPECT_EQ(flags, 2) << "the checker flags are read whatever runs";
    }
}

// Each process query when the application manager answers 6, and when it cannot be had.
TEST_F(ProcessQueryTest, FailuresAndTheMissingManagerGiveEachQuerysTexts)
{
    struct Case {
        std::function<PushBaseRsp()> act;
        std::string log, desc, noMgrLog;
    };
    const Case cases[] = {
        {[&] { return PushBundleHelper::IsAppRunning(MAIL, USER, flag_, 0); }, "Get running process info fail: :6",
         "check if app running, get running process info fail: 6",
         "Get app mgr fail :get ams fail: ams sa not started: error(1000900001)"},
        {[&] { return PushBundleHelper::IsRemoteForegrounding({MAIL, USER, 0, UID}, pid_, flag_, false); },
         "check if app foreground, get running process info fail: 6",
         "check if app foreground, get running process info fail: 6", "Get App Mgr"},
        {[&] { return PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid_); },
         "check if child pid, get running process info fail: 6", "check if child pid, get running process info fail: 6",
         "Get App Mgr"},
        {[&] { return PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, pid_); },
         "check if parent pid, get running process info fail: 6",
         "check if parent pid, get running process info fail: 6", "Get App Mgr"},
        {[&] { return PushBundleHelper::GetAppProcessState({MAIL, USER, 0, ""}, state_, flags_); },
         "get app process state, get running process info fail: 6",
         "get app process state, get running process info fail: 6", "Get App Mgr Fail"},
    };
    const std::string lookup = "get ams fail: ams sa not started: error(1000900001)";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc);
        cap_.Clear();
        Answer({}, 6);
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), 1000900001);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(HasLine(cap_, c.log));
        Kavo::SystemAbilityManagerClient::GetInstance().RemoveSystemAbility(501);
        cap_.Clear();
        EXPECT_EQ(c.act().GetInfo(), lookup);
        EXPECT_TRUE(HasLine(cap_, "get ams fail: ams sa not started"));
        EXPECT_TRUE(HasLine(cap_, "Get app mgr fail: " + lookup));
        EXPECT_TRUE(HasLine(cap_, c.noMgrLog));
        Kavo::SystemAbilityManagerClient::GetInstance().AddSystemAbility(
            501, Kavo::AsRemoteObject<IAppMgr>(Kavo::sptr<IAppMgr>(&*ams_)));
    }
    EXPECT_EQ(state_, -1);
    EXPECT_EQ(pid_, INT_MIN);
    ReportRecorder reports;
    Answer({}, 6);
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    samgr.SetManagerAvailable(true);
    EXPECT_EQ(reports.Reports(),
              (Reports{{100002017, "get running process information ret(6)"},
                       {100002017, "Get app mgr fail :get app mgr fail: get samgr fail: error(1000900001)"}}));
}

TEST_F(ProcessQueryTest, CallerIdentityComesFromTheCallingThreadsUid)
{
    ScopedAccountService accounts{200};
    Kavo::IPCSkeleton::SetCallingUid(UID);
    EXPECT_CALL(*bms_, GetNameAndIndexForUid(UID, _, _))
        .WillOnce(DoAll(SetArgReferee<1>(MAIL), SetArgReferee<2>(1), Return(0)))
        .WillOnce(Return(8521225))
        .WillOnce(Return(0));
    EXPECT_CALL(*accounts, GetOsAccountLocalIdFromUid(UID, _))
        .WillOnce(DoAll(SetArgReferee<1>(USER), Return(0)))
        .WillOnce(Return(4194323));
    ClientUserInfo info;
    EXPECT_TRUE(PushBundleHelper::GetIpcClientUserInfo(info).Succeed());
    EXPECT_EQ(std::tie(info.bundleName, info.userId, info.appIndex, info.uid), std::make_tuple(MAIL, USER, 1, UID));
    PushBaseRsp refused = PushBundleHelper::GetIpcClientUserInfo(info);
    EXPECT_EQ(std::make_tuple(refused.GetErr(), refused.GetInnerErr(), refused.GetErrDescription()),
              std::make_tuple(-1, 100000016, std::string("get uid, bundle name, appIndex fail:8521225")));
    EXPECT_TRUE(HasLine(cap_, "Get uid 20010042, appIndex, bundle name failed, ret:8521225"));
    EXPECT_EQ(PushBundleHelper::GetIpcClientUserInfo(info).GetErrDescription(),
              "Get accountId local id from uid failed 4194323");
    EXPECT_TRUE(HasLine(cap_, "Get uid 20010042 userId failed, ret 1000900001"));
    Kavo::IPCSkeleton::ResetCallingUid();
    Kavo::SystemAbilityManagerClient::GetInstance().RemoveSystemAbility(401);
    EXPECT_EQ(PushBundleHelper::GetIpcClientUserInfo(info).GetErrDescription(), "get bms fail: bms sa not started");
    EXPECT_TRUE(HasLine(cap_, "Get BundleMgr failed, ret: 1000900001"));
}

}  // namespace
}  // namespace KavoTest
