// The process and caller queries against GoogleMock application, package and account
// services: which process of a list each query picks, and each failure's text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/host/log/log.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "tests/push/platform/platform_mocks.h"
#include "tests/support/test_support.h"

namespace KavoTest {
namespace {

using Kavo::Push::ClientUserInfo;
using Kavo::Push::ProcessInfo;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Return;
using ::testing::SetArgReferee;
using S = AppProcessState;
using T = ExtensionAbilityType;

constexpr int USER = 100;
constexpr int UID = 20010042;
constexpr int OTHER_UID = 20010077;
const std::string MAIL = "com.example.mail";

RunningProcessInfo Proc(int pid, int uid, S state, ProcessType type = ProcessType::NORMAL, T ext = T::UNSPECIFIED)
{
    RunningProcessInfo p;
    p.pid = pid;
    p.uid = uid;
    p.state = state;
    p.processType = type;
    p.extensionType = ext;
    return p;
}

RunningProcessInfo Ext(int pid, int uid, S state, T ext)
{
    return Proc(pid, uid, state, ProcessType::EXTENSION, ext);
}

class ProcessQueryTest : public ::testing::Test {
protected:
    void AnswerProcesses(const std::vector<RunningProcessInfo>& list, int32_t code = 0)
    {
        EXPECT_CALL(*ams_, GetRunningProcessInformation(MAIL, USER, _))
            .WillOnce(DoAll(SetArgReferee<2>(list), Return(code)));
    }

    ScopedReadiness readiness_;
    ScopedAppMgr ams_{501};
    ScopedBundleMgr bms_{401};
    Kavo::LogCapture cap_;
};

TEST_F(ProcessQueryTest, ForegroundWalkPicksThePidByProcessKind)
{
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        bool isExtension;
        bool foreground;
        int pid;
    };
    const Case cases[] = {
        {"background main then foreground process: the foreground pid",
         {Proc(10, UID, S::APP_STATE_BACKGROUND), Proc(11, UID, S::APP_STATE_FOREGROUND)},
         false,
         true,
         11},
        {"the same list asked for the extension leaves pid untouched",
         {Proc(10, UID, S::APP_STATE_BACKGROUND), Proc(11, UID, S::APP_STATE_FOREGROUND)},
         true,
         true,
         -7},
        {"focused counts as foreground", {Proc(12, UID, S::APP_STATE_FOCUS)}, false, true, 12},
        {"other uids are skipped", {Proc(13, OTHER_UID, S::APP_STATE_FOREGROUND)}, false, false, -7},
        {"the last background main process wins",
         {Proc(14, UID, S::APP_STATE_BACKGROUND), Proc(15, UID, S::APP_STATE_READY)},
         false,
         false,
         15},
        {"extension: only the remote-notification extension sets the pid",
         {Ext(16, UID, S::APP_STATE_BACKGROUND, T::PUSH), Ext(17, UID, S::APP_STATE_BACKGROUND, T::REMOTE_NOTIFICATION),
          Proc(18, UID, S::APP_STATE_BACKGROUND)},
         true,
         false,
         17},
        {"extension found before a foreground process keeps its pid",
         {Ext(19, UID, S::APP_STATE_BACKGROUND, T::REMOTE_NOTIFICATION), Proc(20, UID, S::APP_STATE_FOREGROUND)},
         true,
         true,
         19},
        {"the walk stops at the foreground process",
         {Proc(21, UID, S::APP_STATE_FOREGROUND), Proc(22, UID, S::APP_STATE_BACKGROUND)},
         false,
         true,
         21},
        {"terminated (5) is not foreground", {Ext(23, UID, S::APP_STATE_TERMINATED, T::PUSH)}, false, false, -7},
    };
    ClientUserInfo caller{MAIL, USER, 0, UID};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        AnswerProcesses(c.list);
        int pid = -7;
        bool foreground = !c.foreground;
        EXPECT_TRUE(PushBundleHelper::IsRemoteForegrounding(caller, pid, foreground, c.isExtension).Succeed());
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
         {Ext(30, OTHER_UID, S::APP_STATE_READY, T::PUSH), Ext(31, UID, S::APP_STATE_READY, T::VOIP),
          Ext(32, UID, S::APP_STATE_READY, T::PUSH), Ext(33, UID, S::APP_STATE_READY, T::PUSH)},
         true,
         32},
        {"child: a normal process with the extension type is not a child",
         {Proc(34, UID, S::APP_STATE_READY, ProcessType::NORMAL, T::PUSH)},
         true,
         INT_MIN},
        {"child: nothing found is a success with the minimum pid", {}, true, INT_MIN},
        {"parent: extension processes of the uid are passed over",
         {Ext(35, UID, S::APP_STATE_READY, T::PUSH), Proc(36, OTHER_UID, S::APP_STATE_READY),
          Proc(37, UID, S::APP_STATE_READY), Proc(38, UID, S::APP_STATE_READY)},
         false,
         37},
        {"parent: none of the uid", {Proc(39, OTHER_UID, S::APP_STATE_READY)}, false, INT_MIN},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        AnswerProcesses(c.list);
        int pid = 5;
        PushBaseRsp rsp = c.child ? PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid)
                                  : PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, pid);
        EXPECT_TRUE(rsp.Succeed());
        EXPECT_EQ(pid, c.pid);
    }
}

TEST_F(ProcessQueryTest, RunningChecksCompareTheCloneUidOrOnlyTheExtensionType)
{
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        bool running;         // IsAppRunning for app index 1 (uid UID)
        bool extensionFound;  // IsGivenExtensionProcessRunning for PUSH
    };
    const Case cases[] = {
        {"a process of the clone's uid runs", {Proc(40, UID, S::APP_STATE_BACKGROUND)}, true, false},
        {"only another uid runs, but its push extension counts for the extension check",
         {Ext(41, OTHER_UID, S::APP_STATE_READY, T::PUSH)},
         false,
         true},
        {"a remote-notification extension is not a push extension",
         {Ext(42, UID, S::APP_STATE_READY, T::REMOTE_NOTIFICATION)},
         true,
         false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        AnswerProcesses(c.list);
        EXPECT_CALL(*bms_, GetUidByBundleName(MAIL, USER, 1)).WillOnce(Return(UID));
        bool running = !c.running;
        EXPECT_TRUE(PushBundleHelper::IsAppRunning(MAIL, USER, running, 1).Succeed());
        EXPECT_EQ(running, c.running);
        AnswerProcesses(c.list);
        EXPECT_EQ(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH), c.extensionFound);
    }
    AnswerProcesses({});  // no process: no uid lookup at all
    bool running = true;
    EXPECT_TRUE(PushBundleHelper::IsAppRunning(MAIL, USER, running, 0).Succeed());
    EXPECT_FALSE(running);
}

TEST_F(ProcessQueryTest, ProcessStateOfTheMainProcessOrANamedExtension)
{
    struct Case {
        const char* name;
        std::vector<RunningProcessInfo> list;
        std::string extension;
        int state;
    };
    const Case cases[] = {
        {"no process: state -1, flags still read", {}, "", -1},
        {"the main process", {Ext(50, UID, S::APP_STATE_READY, T::PUSH), Proc(51, UID, S::APP_STATE_FOCUS)}, "", 3},
        {"the named extension",
         {Proc(52, UID, S::APP_STATE_FOREGROUND), Ext(53, UID, S::APP_STATE_BACKGROUND, T::VOIP)},
         "voip",
         4},
        {"another uid's process does not count", {Proc(54, OTHER_UID, S::APP_STATE_FOREGROUND)}, "", -1},
        {"an unknown extension name matches nothing", {Ext(55, UID, S::APP_STATE_READY, T::PUSH)}, "Push", -1},
    };
    ApplicationInfo record;
    record.tsanEnabled = true;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        AnswerProcesses(c.list);
        if (!c.list.empty()) {
            EXPECT_CALL(*bms_, GetUidByBundleName(MAIL, USER, 0)).WillOnce(Return(UID));
        }
        EXPECT_CALL(*bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(record), Return(true)));
        int state = 9;
        unsigned char flags = 0;
        EXPECT_TRUE(
            PushBundleHelper::GetAppProcessState(ProcessInfo{MAIL, USER, 0, c.extension}, state, flags).Succeed());
        EXPECT_EQ(state, c.state);
        EXPECT_EQ(flags, 2);
    }
}

// Each process query when the application manager answers a failure code.
TEST_F(ProcessQueryTest, RequestFailuresGiveEachQuerysTexts)
{
    struct Case {
        const char* name;
        std::function<PushBaseRsp()> act;
        std::string log;
        std::string desc;
    };
    int pid = 0;
    bool flag = false;
    int state = 0;
    unsigned char flags = 0;
    const Case cases[] = {
        {"running", [&] { return PushBundleHelper::IsAppRunning(MAIL, USER, flag, 0); },
         "Get running process info fail: :6", "check if app running, get running process info fail: 6"},
        {"foreground",
         [&] {
             return PushBundleHelper::IsRemoteForegrounding(ClientUserInfo{MAIL, USER, 0, UID}, pid, flag, false);
         },
         "check if app foreground, get running process info fail: 6",
         "check if app foreground, get running process info fail: 6"},
        {"child", [&] { return PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid); },
         "check if child pid, get running process info fail: 6",
         "check if child pid, get running process info fail: 6"},
        {"parent", [&] { return PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, pid); },
         "check if parent pid, get running process info fail: 6",
         "check if parent pid, get running process info fail: 6"},
        {"state",
         [&] {
             return PushBundleHelper::GetAppProcessState(ProcessInfo{MAIL, USER, 0, ""}, state, flags);
         },
         "get app process state, get running process info fail: 6",
         "get app process state, get running process info fail: 6"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        cap_.Clear();
        AnswerProcesses({}, 6);
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), 1000900001);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(HasLine(cap_, c.log));
    }
    ReportRecorder reports;
    AnswerProcesses({}, 6);
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    EXPECT_EQ(reports.Reports(),
              (std::vector<std::pair<int, std::string>>{{100002017, "get running process information ret(6)"}}));
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
    EXPECT_EQ(info.bundleName, MAIL);
    EXPECT_EQ(info.userId, USER);
    EXPECT_EQ(info.appIndex, 1);
    EXPECT_EQ(info.uid, UID);

    PushBaseRsp refused = PushBundleHelper::GetIpcClientUserInfo(info);
    EXPECT_EQ(refused.GetErr(), -1);
    EXPECT_EQ(refused.GetInnerErr(), 100000016);
    EXPECT_EQ(refused.GetErrDescription(), "get uid, bundle name, appIndex fail:8521225");
    EXPECT_TRUE(HasLine(cap_, "Get uid 20010042, appIndex, bundle name failed, ret:8521225"));

    PushBaseRsp noAccount = PushBundleHelper::GetIpcClientUserInfo(info);
    EXPECT_EQ(noAccount.GetErrDescription(), "Get accountId local id from uid failed 4194323");
    EXPECT_TRUE(HasLine(cap_, "Get uid 20010042 userId failed, ret 1000900001"));
    Kavo::IPCSkeleton::ResetCallingUid();
}

class NoAppMgrTest : public ::testing::Test {
protected:
    ScopedReadiness readiness_;
    Kavo::LogCapture cap_;
};

TEST_F(NoAppMgrTest, EachQueryLogsItsOwnTextAndTheExtensionCheckReports)
{
    struct Case {
        const char* name;
        std::function<PushBaseRsp()> act;
        std::string log;
    };
    int pid = 0;
    bool flag = false;
    int state = 0;
    unsigned char flags = 0;
    const std::string lookup = "get ams fail: ams sa not started: error(1000900001)";
    const Case cases[] = {
        {"running", [&] { return PushBundleHelper::IsAppRunning(MAIL, USER, flag, 0); }, "Get app mgr fail :" + lookup},
        {"foreground",
         [&] {
             return PushBundleHelper::IsRemoteForegrounding(ClientUserInfo{MAIL, USER, 0, UID}, pid, flag, true);
         },
         "Get App Mgr"},
        {"child", [&] { return PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, pid); }, "Get App Mgr"},
        {"parent", [&] { return PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, pid); }, "Get App Mgr"},
        {"state",
         [&] {
             return PushBundleHelper::GetAppProcessState(ProcessInfo{MAIL, USER, 0, ""}, state, flags);
         },
         "Get App Mgr Fail"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        cap_.Clear();
        EXPECT_EQ(c.act().GetInfo(), lookup);
        EXPECT_TRUE(HasLine(cap_, "get ams fail: ams sa not started"));
        EXPECT_TRUE(HasLine(cap_, "Get app mgr fail: " + lookup));
        EXPECT_TRUE(HasLine(cap_, c.log));
    }
    EXPECT_EQ(state, -1);
    EXPECT_EQ(pid, INT_MIN);

    ReportRecorder reports;
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    samgr.SetManagerAvailable(false);
    EXPECT_FALSE(PushBundleHelper::IsGivenExtensionProcessRunning(MAIL, USER, T::PUSH));
    samgr.SetManagerAvailable(true);
    EXPECT_EQ(reports.Reports(),
              (std::vector<std::pair<int, std::string>>{
                  {100002017, "Get app mgr fail :get app mgr fail: get samgr fail: error(1000900001)"}}));
    ClientUserInfo info;
    cap_.Clear();
    EXPECT_EQ(PushBundleHelper::GetIpcClientUserInfo(info).GetErrDescription(), "get bms fail: bms sa not started");
    EXPECT_TRUE(HasLine(cap_, "Get BundleMgr failed, ret: 1000900001"));
}

}  // namespace
}  // namespace KavoTest
