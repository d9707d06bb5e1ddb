// The package, process and caller queries' fixture: GoogleMock managers registered for the test,
// the calling uid set, and the process lists and outputs the queries fill.
#ifndef KAVO_TESTS_PUSH_PLATFORM_BUNDLE_QUERY_FIXTURE_H
#define KAVO_TESTS_PUSH_PLATFORM_BUNDLE_QUERY_FIXTURE_H

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using T = ExtensionAbilityType;

constexpr int USER = 100, UID = 20010042, OTHER = 20010077;
constexpr int32_t BUNDLE_ID = 401, APP_ID = 501;
const std::string MAIL = "com.example.mail";

constexpr auto READY = AppProcessState::READY, FOREGROUND = AppProcessState::FOREGROUND;
constexpr auto FOCUS = AppProcessState::FOCUSED, BACKGROUND = AppProcessState::BACKGROUND;

inline RunningProcessInfo Process(int pid, int uid, AppProcessState state, ProcessType type = ProcessType::NORMAL,
                                  T ext = T::UNSPECIFIED)
{
    RunningProcessInfo p;
    p.pid = pid, p.uid = uid, p.state = state, p.processType = type, p.extensionType = ext;
    return p;
}

using Processes = std::vector<RunningProcessInfo>;

inline RunningProcessInfo Extension(int pid, int uid, AppProcessState state, T ext)
{
    return Process(pid, uid, state, ProcessType::EXTENSION, ext);
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
    void Answer(const Processes& list)
    {
        EXPECT_CALL(**ams_, ListRunningProcesses(MAIL, USER, _)).WillOnce(DoAll(SetArgReferee<2>(list), Return(0)));
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
    int uid_ = 0, pid_ = 0, state_ = 0;
    bool flag_ = false;
    unsigned char flags_ = 0;
};

}  // namespace KavoTest

#endif  // KAVO_TESTS_PUSH_PLATFORM_BUNDLE_QUERY_FIXTURE_H
