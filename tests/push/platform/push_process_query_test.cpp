// The process and caller queries against GoogleMock application, package and account services:
// which process of a list each query picks, and each failure's texts.
#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Push::ClientUserInfo;
using Kavo::Push::ProcessInfo;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using S = AppProcessState;
using T = ExtensionAbilityType;

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
};

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

TEST_F(ProcessQueryTest, PidQueriesPickTheirProcessByKindUidAndState)
{
    struct Case { const char* name; std::vector<RunningProcessInfo> list; Query query; std::string expected; };
    const std::vector<RunningProcessInfo> bgThenFg = {P(10, UID, S::APP_STATE_BACKGROUND), P(11, UID, S::APP_STATE_FOREGROUND)};
    const Case cases[] = {
        {"foreground process after a background one", bgThenFg, FOREGROUND, "fg 11"},
        {"asked for the extension: pid untouched", bgThenFg, FOREGROUND_EXTENSION, "fg -7"},
        {"focused counts as foreground", {P(12, UID, S::APP_STATE_FOCUS)}, FOREGROUND, "fg 12"},
        {"other uids are skipped", {P(13, OTHER, S::APP_STATE_FOREGROUND)}, FOREGROUND, "bg -7"},
        {"the last background main process wins", {P(14, UID, S::APP_STATE_BACKGROUND), P(15, UID, S::APP_STATE_READY)},
         FOREGROUND, "bg 15"},
        {"extension: only the remote-notification one sets the pid",
         {E(16, UID, S::APP_STATE_BACKGROUND, T::PUSH), E(17, UID, S::APP_STATE_BACKGROUND, T::REMOTE_NOTIFICATION),
          P(18, UID, S::APP_STATE_BACKGROUND)}, FOREGROUND_EXTENSION, "bg 17"},
        {"extension found before a foreground process keeps its pid",
         {E(19, UID, S::APP_STATE_BACKGROUND, T::REMOTE_NOTIFICATION), P(20, UID, S::APP_STATE_FOREGROUND)},
         FOREGROUND_EXTENSION, "fg 19"},
        {"the walk stops at the foreground process",
         {P(21, UID, S::APP_STATE_FOREGROUND), P(22, UID, S::APP_STATE_BACKGROUND)}, FOREGROUND, "fg 21"},
        {"terminated is not foreground", {E(23, UID, S::APP_STATE_TERMINATED, T::PUSH)}, FOREGROUND, "bg -7"},
        {"child: type, extension type and uid must all match",
         {E(30, OTHER, S::APP_STATE_READY, T::PUSH), E(31, UID, S::APP_STATE_READY, T::VOIP),
          E(32, UID, S::APP_STATE_READY, T::PUSH), E(33, UID, S::APP_STATE_READY, T::PUSH)}, CHILD, "32"},
        {"child: a normal process is no child", {P(34, UID, S::APP_STATE_READY, ProcessType::NORMAL, T::PUSH)}, CHILD,
         std::to_string(INT_MIN)},
        {"parent: extensions of the uid are passed over",
         {E(35, UID, S::APP_STATE_READY, T::PUSH), P(36, OTHER, S::APP_STATE_READY), P(37, UID, S::APP_STATE_READY),
          P(38, UID, S::APP_STATE_READY)}, PARENT, "37"},
        {"parent: none of the uid", {P(39, OTHER, S::APP_STATE_READY)}, PARENT, std::to_string(INT_MIN)},
    };
    for (const auto& c : cases) {
        Answer(c.list);
        EXPECT_EQ(Ask(c.query), c.expected) << c.name;
    }
}

TEST_F(ProcessQueryTest, RunningAndStateChecksCompareTheCloneUidOrTheExtension)
{
    // IsAppRunning for app index 1, IsGivenExtensionProcessRunning for PUSH, GetAppProcessState for the
    // extension name ("" the main process).
    struct Case { const char* name; std::vector<RunningProcessInfo> list; bool running, pushRunning;
                  std::string extension; int state; };
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
}

}  // namespace
}  // namespace KavoTest
