// The timer facade's fixture: a GoogleMock time service, a fixed boot clock and recorders of
// the events, reports and lines sent on the way.
#ifndef KAVO_TESTS_PUSH_PLATFORM_TIMER_FIXTURE_H
#define KAVO_TESTS_PUSH_PLATFORM_TIMER_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdint>

#include "kavo/host/time/time_service_client.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {

constexpr int TIME_SERVICE = 3702;
constexpr int64_t BOOT_MS = 5000000;

class TimerFixture : public ::testing::Test {
protected:
    TimerFixture()
    {
        Kavo::MiscServices::TimeServiceClient::SetBootTimeSource([this] { return bootMs_; });
    }
    ~TimerFixture() override
    {
        Kavo::MiscServices::TimeServiceClient::SetBootTimeSource(nullptr);
        Kavo::MiscServices::TimeServiceClient::SetClientAvailable(true);
    }

    int64_t bootMs_ = BOOT_MS;
    ScopedReadiness readiness_;
    ScopedTimeService service_{TIME_SERVICE};
    EventRecorder events_;
    ReportRecorder reports_;
    Kavo::LogCapture cap_;
};

}  // namespace KavoTest

#endif  // KAVO_TESTS_PUSH_PLATFORM_TIMER_FIXTURE_H
