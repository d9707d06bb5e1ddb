// The timer facade against a GoogleMock time service and a fixed boot clock: the deadlines it
// asks for, the one retried step, and each failure's texts, events and reports.
#include "kavo/push/platform/push_timer_helper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>

#include "kavo/host/log/log.h"
#include "kavo/push/platform/system_clock_util.h"
#include "tests/push/platform/platform_mocks.h"
#include "tests/support/test_support.h"

namespace KavoTest {
namespace {

using Kavo::MiscServices::TimeServiceClient;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushTimerHelper;
using Kavo::Push::PushTimerInfo;
using Kavo::Push::SystemClockUtil;
using ::testing::_;
using ::testing::Return;
using Reports = std::vector<std::pair<int, std::string>>;

constexpr int TIME_SERVICE = 3702;
constexpr int64_t BOOT_MS = 5000000;

class TimerHelperTest : public ::testing::Test {
protected:
    TimerHelperTest()
    {
        TimeServiceClient::SetBootTimeSource([this] { return bootMs_; });
    }
    ~TimerHelperTest() override
    {
        TimeServiceClient::SetBootTimeSource(nullptr);
        TimeServiceClient::SetClientAvailable(true);
    }

    int64_t bootMs_ = BOOT_MS;
    ScopedReadiness readiness_;
    ScopedTimeService service_{TIME_SERVICE};
    EventRecorder events_;
    ReportRecorder reports_;
    Kavo::LogCapture cap_;
};

TEST_F(TimerHelperTest, StartAsksForBootTimePlusTheDurationWithTheTypeBits)
{
    struct Case {
        const char* name;
        int duration;
        bool wakeup;
        int type;
        uint64_t deadline;
    };
    const Case cases[] = {
        {"thirty seconds, realtime and exact", 30, false, 1 | 4, BOOT_MS + 30000},
        {"wakeup adds its bit", 30, true, 1 | 2 | 4, BOOT_MS + 30000},
        {"a zero duration fires now", 0, false, 5, BOOT_MS},
        {"seconds past the 32-bit millisecond range", 3000000, false, 5, BOOT_MS + 3000000000ULL},
    };
    uint64_t nextId = 41;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto timer = std::make_shared<PushTimerInfo>(c.duration);
        timer->SetWakeup(c.wakeup);
        EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(++nextId));
        EXPECT_CALL(*service_, StartTimer(nextId, c.deadline)).WillOnce(Return(true));
        EXPECT_TRUE(PushTimerHelper::StartTimer(timer).Succeed());
        EXPECT_EQ(timer->GetTimerId(), nextId);
        EXPECT_EQ(timer->type, c.type);
        ::testing::Mock::VerifyAndClearExpectations(&*service_);
    }
    auto timer = std::make_shared<PushTimerInfo>(10);
    timer->SetTimerId(7);
    bootMs_ += 1234;
    EXPECT_CALL(*service_, StartTimer(7, BOOT_MS + 1234 + 10000)).WillOnce(Return(true));
    EXPECT_TRUE(PushTimerHelper::RestartTimer(timer).Succeed()) << "restart keeps the id, moves the deadline";
}

TEST_F(TimerHelperTest, NullTimersAreReportedWithEachOperationsText)
{
    struct Case {
        const char* name;
        std::function<PushBaseRsp()> act;
        std::string log;
        std::string desc;
    };
    const Case cases[] = {
        {"start", [] { return PushTimerHelper::StartTimer(nullptr); }, "StartTimer: timerInfo is Null",
         "StartTimer: New Timer Error"},
        {"start new", [] { return PushTimerHelper::StartNewTimer(nullptr); }, "StartNewTimer: timerInfo is Null",
         "StartNewTimer: New Timer Error"},
        {"stop", [] { return PushTimerHelper::StopTimer(nullptr); }, "StopTimer: currTimerInfo is nullptr",
         "Current Timer of PushTimerHelper::StopTimer is Null"},
        {"destroy", [] { return PushTimerHelper::DestoryTimer(nullptr); }, "DestoryTimer: currTimerInfo is nullptr",
         "current timer is null"},
        {"restart names StopTimer in its description", [] { return PushTimerHelper::RestartTimer(nullptr); },
         "RestartTimer: currTimerInfo is nullptr", "Current Timer of PushTimerHelper::StopTimer is Null"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        reports_.Clear();
        cap_.Clear();
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), 1000900001);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(cap_.Texts(), std::vector<std::string>{c.log});
        EXPECT_EQ(reports_.Reports(), (Reports{{100002018, c.log}}));
    }
    EXPECT_TRUE(events_.Events().empty());
}

TEST_F(TimerHelperTest, RefusalsAndAMissingClientSendTheirEvents)
{
    struct Case {
        const char* name;
        std::function<void(MockTimeService&)> refuse;
        std::function<PushBaseRsp(const std::shared_ptr<PushTimerInfo>&)> act;
        std::string refusedLog, refusedDesc, refusedApi, noClientLog;
    };
    const Case cases[] = {
        {"stop", [](MockTimeService& m) { EXPECT_CALL(m, StopTimer(9)).WillOnce(Return(false)); },
         PushTimerHelper::StopTimer, "StopTimer: Stop Timer Failed", "Stop timer failed", "StopTimer",
         "StopTimer: Get System Timer is Null"},
        {"destroy", [](MockTimeService& m) { EXPECT_CALL(m, DestroyTimer(9)).WillOnce(Return(false)); },
         PushTimerHelper::DestoryTimer, "DestoryTimer: Destroy Timer Failed", "Destroy timer failed", "DestroyTimer",
         "DestoryTimer: Get System Timer is Null"},
        {"restart", [](MockTimeService& m) { EXPECT_CALL(m, StartTimer(9, BOOT_MS + 60000)).WillOnce(Return(false)); },
         PushTimerHelper::RestartTimer, "RestartTimer: ReStart Timer Failed", "ReStart Timer failed", "StartTimer",
         "RestartTimer: Get System Timer is Null"},
    };
    auto timer = std::make_shared<PushTimerInfo>(60);
    timer->SetTimerId(9);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<AnalyticsEvent> before = events_.Events();
        c.refuse(*service_);
        cap_.Clear();
        PushBaseRsp refused = c.act(timer);
        EXPECT_EQ(refused.GetErrDescription(), c.refusedDesc);
        EXPECT_TRUE(HasLine(cap_, c.refusedLog));
        TimeServiceClient::SetClientAvailable(false);
        PushBaseRsp noClient = c.act(timer);
        TimeServiceClient::SetClientAvailable(true);
        EXPECT_EQ(noClient.GetErrDescription(), "Get system timer is null");
        EXPECT_TRUE(HasLine(cap_, c.noClientLog));
        std::vector<AnalyticsEvent> all = events_.Events();
        EXPECT_EQ(std::vector<AnalyticsEvent>(all.begin() + before.size(), all.end()),
                  (std::vector<AnalyticsEvent>{{18, c.refusedApi, 1, "0"},
                                               {18, "GetInstance", 1, "Get System Timer is Null"}}));
    }
    EXPECT_TRUE(reports_.Reports().empty());
}

TEST_F(TimerHelperTest, CreationIsRetriedStartIsNot)
{
    auto timer = std::make_shared<PushTimerInfo>(5);
    EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(0));
    PushBaseRsp notCreated = PushTimerHelper::StartNewTimer(timer);
    EXPECT_EQ(notCreated.GetErrDescription(), "create timer fail: time service sa not started");
    EXPECT_TRUE(HasLine(cap_, "StartNewTimer: Create Timer Fail"));
    EXPECT_TRUE(HasLine(cap_, "create timer failed cause time service sa not started :create timer fail: time "
                              "service sa not started: error(1000900001)"));
    EXPECT_EQ(timer->GetTimerId(), 0u);

    readiness_.Track(TIME_SERVICE, ScopedReadiness::Service::STOPPED);
    EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(0));
    EXPECT_EQ(PushTimerHelper::StartNewTimer(timer).GetInnerErr(), Kavo::Push::INNER_ERR_SA_STOPPED);

    readiness_.Track(TIME_SERVICE, ScopedReadiness::Service::STARTED);
    EXPECT_CALL(*service_, CreateTimer(_)).WillOnce(Return(12));
    EXPECT_CALL(*service_, StartTimer(12, BOOT_MS + 5000)).WillOnce(Return(false));
    cap_.Clear();
    EXPECT_EQ(PushTimerHelper::StartNewTimer(timer).GetErrDescription(), "start timer fail");
    EXPECT_EQ(timer->GetTimerId(), 12u) << "the id is kept even when the start is refused";
    EXPECT_TRUE(HasLine(cap_, "StartNewTimer: Start Timer Fail"));
    EXPECT_EQ(events_.Events(),
              (std::vector<AnalyticsEvent>{
                  {18, "CreateTimer", 1, "0"}, {18, "CreateTimer", 1, "0"}, {18, "StartTimer", 1, "0"}}));
}

TEST_F(TimerHelperTest, BootClockBelowOneIsReplacedByMinusOne)
{
    struct Case {
        const char* name;
        int64_t answer;
        int64_t result;
        bool reported;
    };
    const Case cases[] = {
        {"zero", 0, -1, true},
        {"negative", -20, -1, true},
        {"one millisecond", 1, 1, false},
        {"a long uptime", 86400000LL * 400, 86400000LL * 400, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bootMs_ = c.answer;
        std::vector<AnalyticsEvent> before = events_.Events();
        EXPECT_EQ(SystemClockUtil::GetBootTimeMillis(), c.result);
        std::vector<AnalyticsEvent> all = events_.Events();
        std::vector<AnalyticsEvent> sent(all.begin() + before.size(), all.end());
        EXPECT_EQ(sent.size(), c.reported ? 1u : 0u);
        if (c.reported) {
            EXPECT_EQ(sent[0], (AnalyticsEvent{18, "GetBootTimeMs", 1, std::to_string(c.answer)}));
        }
    }
    TimeServiceClient::SetClientAvailable(false);
    EXPECT_EQ(SystemClockUtil::GetBootTimeMillis(), -1) << "no client reads as boot time 0";
}

}  // namespace
}  // namespace KavoTest
