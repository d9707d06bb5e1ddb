// The process queries against a GoogleMock application manager.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "kavo/push/platform/push_bundle_helper.h"
#include "tests/push/platform/bundle_query_fixture.h"

namespace KavoTest {
namespace {

class BundleProcessTest : public BundleQueryTest {
protected:
    std::string Pids(const Processes& list);
};

// The pid queries on `list`: the foreground walk for the main process, then for the extension
// ("fg"/"bg" and the pid, -7 when untouched), then the child's and the parent's pid.
std::string BundleProcessTest::Pids(const Processes& list)
{
    std::string out;
    for (bool extension : {false, true}) {
        Answer(list);
        int pid = -7;
        bool fg = false;
        EXPECT_TRUE(PushBundleHelper::IsRemoteForegrounding({MAIL, USER, 0, UID}, pid, fg, extension).Succeed());
        out += (fg ? "fg " : "bg ") + std::to_string(pid) + ", ";
    }
    int child = 0, parent = 0;
    Answer(list);
    EXPECT_TRUE(PushBundleHelper::GetChildProcessPid(MAIL, USER, T::PUSH, UID, child).Succeed());
    Answer(list);
    EXPECT_TRUE(PushBundleHelper::GetParentProcessPid(MAIL, USER, UID, parent).Succeed());
    return out + std::to_string(child) + ", " + std::to_string(parent);
}

TEST_F(BundleProcessTest, PidQueriesPickTheirProcessByKindUidAndState)
{
    struct Case {
        const char* name;
        Processes list;
        std::string pids;  // as Pids gives them
    };
    const auto remote = T::REMOTE_NOTIFICATION;
    const std::string none = std::to_string(INT_MIN);
    const Case cases[] = {
        {"the walk stops at the first foreground process; the extension walk leaves the pid",
         Processes{Process(10, UID, BACKGROUND), Process(11, UID, FOREGROUND), Process(12, UID, BACKGROUND)},
         "fg 11, fg -7, " + none + ", 10"},
        {"other uids are skipped; focused counts as foreground",
         Processes{Process(13, OTHER, FOREGROUND), Process(14, UID, FOCUS)}, "fg 14, fg -7, " + none + ", 14"},
        {"the last background main process wins, only the remote-notification extension for the extension walk",
         Processes{Extension(16, UID, BACKGROUND, T::PUSH), Extension(17, UID, BACKGROUND, remote),
                   Process(18, UID, BACKGROUND), Process(15, UID, READY)},
         "bg 15, bg 17, 16, 18"},
        {"an extension found before a foreground process keeps its pid",
         Processes{Extension(19, UID, BACKGROUND, remote), Process(20, UID, FOREGROUND)},
         "fg 20, fg 19, " + none + ", 20"},
        {"a child is an extension process of the type and the uid",
         Processes{Extension(30, OTHER, READY, T::PUSH), Extension(31, UID, READY, T::VOIP),
                   Process(34, UID, READY, ProcessType::NORMAL, T::PUSH), Extension(32, UID, READY, T::PUSH),
                   Extension(33, UID, READY, T::PUSH)},
         "bg 34, bg -7, 32, 34"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Pids(c.list), c.pids) << c.name;
    }
}

TEST_F(BundleProcessTest, RunningAndStateChecksCompareTheCloneUidOrTheExtension)
{
    // IsAppRunning for app index 1, IsGivenExtensionProcessRunning for PUSH, GetAppProcessState for the
    // extension name ("" the main process).
    struct Case {
        const char* name;
        Processes list;
        bool running, pushRunning;
        std::string extension;
        int state;
    };
    const Case cases[] = {
        {"nothing runs: no uid lookup", Processes{}, false, false, "", -1},
        {"the main process's state", Processes{Extension(50, UID, READY, T::PUSH), Process(51, UID, FOCUS)}, true, true,
         "", 3},
        {"the named extension's state",
         Processes{Process(52, UID, FOREGROUND), Extension(53, UID, BACKGROUND, T::VOIP)}, true, false, "voip", 4},
        {"another uid: only its push extension counts; an unknown extension name matches nothing",
         Processes{Extension(41, OTHER, READY, T::PUSH)}, false, true, "Push", -1},
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
