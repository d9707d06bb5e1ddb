#include "kavo/host/time/time_service.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <tuple>

#include "kavo/host/device/device.h"
#include "tests/host/time/counting_timer.h"

namespace {

using namespace Kavo;
using namespace Kavo::MiscServices;
using KavoTest::CountingTimer;

uint64_t NowMs()
{
    return static_cast<uint64_t>(TimeServiceClient::ReadBootClockMs());
}

TEST(TimeServiceTest, TimersFireOnTheServiceThreadAfterTheirDeadline)
{
    auto service = MakeSptr<TimeService>();
    for (int64_t offsetMs : {-1000, 40}) {  // a deadline in the past fires at once
        auto timer = std::make_shared<CountingTimer>();
        uint64_t id = service->CreateTimer(timer);
        uint64_t deadline = NowMs() + offsetMs;
        ASSERT_TRUE(service->StartTimer(id, deadline));
        auto [fired, atMs, thread] = timer->WaitFor(1);
        EXPECT_EQ(fired, 1);
        EXPECT_GE(atMs, static_cast<int64_t>(deadline));
        EXPECT_NE(thread, std::this_thread::get_id());
        EXPECT_FALSE(service->IsArmed(id)) << "a one-shot timer disarms";
    }
    auto repeating = std::make_shared<CountingTimer>();
    repeating->SetRepeat(true);
    repeating->SetInterval(10);
    uint64_t id = service->CreateTimer(repeating);
    ASSERT_TRUE(service->StartTimer(id, NowMs()));
    EXPECT_EQ(std::get<0>(repeating->WaitFor(3)), 3) << "rearmed by its interval";
    EXPECT_TRUE(service->IsArmed(id));
    EXPECT_TRUE(service->StopTimer(id));
}

TEST(TimeServiceTest, StoppedDestroyedAndUnknownTimers)
{
    auto service = MakeSptr<TimeService>();
    auto stopped = std::make_shared<CountingTimer>(), destroyed = std::make_shared<CountingTimer>(),
         witness = std::make_shared<CountingTimer>();
    uint64_t now = NowMs(), a = service->CreateTimer(stopped), b = service->CreateTimer(destroyed),
             c = service->CreateTimer(witness);
    EXPECT_TRUE(service->StartTimer(a, now + 30) && service->StartTimer(b, now + 30));
    EXPECT_TRUE(service->StopTimer(a) && service->DestroyTimer(b) && service->StartTimer(c, now + 60));
    ASSERT_EQ(std::get<0>(witness->WaitFor(1)), 1);
    EXPECT_EQ(std::get<0>(stopped->WaitFor(0)) + std::get<0>(destroyed->WaitFor(0)), 0);
    EXPECT_EQ(service->TimerCount(), 2u);
    EXPECT_FALSE(service->StartTimer(b, now)) << "a destroyed id is unknown";
    EXPECT_FALSE(service->StopTimer(999));
    EXPECT_EQ(service->CreateTimer(nullptr), 0u);
}

// Drops the last reference to its device, and with it the device's time service, from its own
// expiry.
class DeviceDroppingTimer : public CountingTimer {
public:
    void OnTrigger() override
    {
        device.reset();
        CountingTimer::OnTrigger();
    }
    std::unique_ptr<Host::Device> device = std::make_unique<Host::Device>();
};

TEST(TimeServiceTest, TheLastReferenceMayGoInsideACallback)
{
    auto timer = std::make_shared<DeviceDroppingTimer>();
    std::weak_ptr<DeviceDroppingTimer> watch = timer;
    timer->device->Activate();
    auto& service = timer->device->GetTimeService();
    ASSERT_TRUE(service.StartTimer(service.CreateTimer(timer), NowMs()));
    ASSERT_EQ(std::get<0>(timer->WaitFor(1)), 1);
    timer.reset();
    // The worker lets the timer go when it has left the service's state; under ASan a worker
    // that resumes on freed state fails here.
    for (int i = 0; i < 5000 && !watch.expired(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(watch.expired());
}

}  // namespace
