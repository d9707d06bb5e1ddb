// The timer facade against a GoogleMock time service and a fixed boot clock.
#include "kavo/push/platform/push_timer_helper.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/push/platform/timer_fixture.h"

namespace KavoTest {
namespace {

using Kavo::MiscServices::TimeServiceClient;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushTimerHelper;
using Kavo::Push::PushTimerInfo;
using Act = PushBaseRsp (*)(const std::shared_ptr<PushTimerInfo>&);

using TimerHelperTest = TimerFixture;

TEST_F(TimerHelperTest, StartAsksForBootTimePlusTheDurationWithTheTypeBits)
{
    // The duration in seconds, whether it wakes the device, the type bits, the deadline asked for.
    const std::tuple<int, bool, int, uint64_t> cases[] = {{30, false, 1 | 4, BOOT_MS + 30000},
                                                          {30, true, 1 | 2 | 4, BOOT_MS + 30000},
                                                          {3000000, false, 5, BOOT_MS + 3000000000ULL}};
    uint64_t id = 41;
    for (const auto& [duration, wakeup, type, deadline] : cases) {
        SCOPED_TRACE(std::to_string(duration) + (wakeup ? " wakeup" : ""));
        auto timer = std::make_shared<PushTimerInfo>(duration);
        timer->SetWakeup(wakeup);
        EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(++id));
        EXPECT_CALL(*service_, StartTimer(id, deadline)).WillOnce(Return(true));
        EXPECT_TRUE(PushTimerHelper::StartTimer(timer).Succeed());
        EXPECT_EQ(timer->GetTimerId(), id);
        EXPECT_EQ(timer->type, type);
    }
}

TEST_F(TimerHelperTest, NullTimersAreReportedWithEachOperationsText)
{
    const std::tuple<Act, std::string, std::string> cases[] = {
        {PushTimerHelper::StartTimer, "StartTimer: timerInfo is Null", "StartTimer: New Timer Error"},
        {PushTimerHelper::StartNewTimer, "StartNewTimer: timerInfo is Null", "StartNewTimer: New Timer Error"},
        {PushTimerHelper::StopTimer, "StopTimer: currTimerInfo is nullptr",
         "Current Timer of PushTimerHelper::StopTimer is Null"},
        {PushTimerHelper::DestoryTimer, "DestoryTimer: currTimerInfo is nullptr", "current timer is null"},
        {PushTimerHelper::RestartTimer, "RestartTimer: currTimerInfo is nullptr",
         "Current Timer of PushTimerHelper::StopTimer is Null"},
    };
    for (const auto& [act, log, desc] : cases) {
        cap_.Clear();
        ReportRecorder reports;
        PushBaseRsp rsp = act(nullptr);
        EXPECT_EQ(std::make_pair(int(rsp.GetErr()), rsp.GetErrDescription()), std::make_pair(1000900001, desc));
        EXPECT_EQ(cap_.Texts(), std::vector<std::string>{log});
        EXPECT_EQ(reports.Reports(), (ReportRecorder::Reported{{100002018, log}}));
    }
    EXPECT_EQ(events_.Take(), Events{});
}

TEST_F(TimerHelperTest, RefusalsAndAMissingClientSendTheirEvents)
{
    struct Case {
        Act act;
        std::function<void(MockTimeService&)> refuse;
        std::string log, desc, api, noClientLog;
    };
    const Case cases[] = {
        {PushTimerHelper::StopTimer, [](auto& m) { EXPECT_CALL(m, StopTimer(9)).WillOnce(Return(false)); },
         "StopTimer: Stop Timer Failed", "Stop timer failed", "StopTimer", "StopTimer: Get System Timer is Null"},
        {PushTimerHelper::DestoryTimer, [](auto& m) { EXPECT_CALL(m, DestroyTimer(9)).WillOnce(Return(false)); },
         "DestoryTimer: Destroy Timer Failed", "Destroy timer failed", "DestroyTimer",
         "DestoryTimer: Get System Timer is Null"},
        {PushTimerHelper::RestartTimer,
         [](auto& m) { EXPECT_CALL(m, StartTimer(9, BOOT_MS + 60000)).WillOnce(Return(false)); },
         "RestartTimer: ReStart Timer Failed", "ReStart Timer failed", "StartTimer",
         "RestartTimer: Get System Timer is Null"},
    };
    auto timer = std::make_shared<PushTimerInfo>(60);
    timer->SetTimerId(9);
    for (const auto& c : cases) {
        c.refuse(*service_);
        EXPECT_EQ(c.act(timer).GetErrDescription(), c.desc);
        TimeServiceClient::SetClientAvailable(false);
        EXPECT_EQ(c.act(timer).GetErrDescription(), "Get system timer is null");
        TimeServiceClient::SetClientAvailable(true);
        EXPECT_TRUE(HasLine(cap_, c.log) && HasLine(cap_, c.noClientLog)) << c.api;
        EXPECT_EQ(events_.Take(), (Events{{18, c.api, 1, "0"}, {18, "GetInstance", 1, "Get System Timer is Null"}}));
    }
    EXPECT_TRUE(reports_.Reports().empty());
}

// Tracked as started, the time service's refusal to create is the call's own and is not retried.
TEST_F(TimerHelperTest, CreationGoesThroughTheRunnerStartDoesNot)
{
    auto timer = std::make_shared<PushTimerInfo>(5);
    EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(0));
    EXPECT_EQ(PushTimerHelper::StartNewTimer(timer).GetErrDescription(),
              "create timer fail: time service sa not started");
    EXPECT_TRUE(HasLine(cap_, "StartNewTimer: Create Timer Fail"));
    EXPECT_TRUE(HasLine(cap_, "create timer failed cause time service sa not started :create timer fail: time "
                              "service sa not started: error(1000900001)"));
    TimeServiceClient::SetClientAvailable(false);
    EXPECT_EQ(PushTimerHelper::StartNewTimer(timer).GetErrDescription(),
              "create timer fail: time service sa not started");
    TimeServiceClient::SetClientAvailable(true);
    EXPECT_EQ(timer->GetTimerId(), 0u);
    readiness_.Track(TIME_SERVICE, ScopedReadiness::Service::STARTED);
    EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(0));
    EXPECT_EQ(PushTimerHelper::StartNewTimer(timer).GetInnerErr(), Kavo::Push::INNER_ERR_SA_INVOKE_FAILED);
    EXPECT_TRUE(HasLine(cap_, "Task for ability:3702 is started"));
    EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(12));
    EXPECT_CALL(*service_, StartTimer(12, BOOT_MS + 5000)).WillOnce(Return(false));
    EXPECT_EQ(PushTimerHelper::StartNewTimer(timer).GetErrDescription(), "start timer fail");
    EXPECT_EQ(timer->GetTimerId(), 12u) << "the id is kept even when the start is refused";
    EXPECT_TRUE(HasLine(cap_, "StartNewTimer: Start Timer Fail"));
    EXPECT_EQ(events_.Take(), (Events{{18, "CreateTimer", 1, "0"},
                                      {18, "CreateTimer", 1, "0"},
                                      {18, "CreateTimer", 1, "0"},
                                      {18, "StartTimer", 1, "0"}}));
}

}  // namespace
}  // namespace KavoTest
