// The host time service: timers fire on its thread once the boot clock passes their deadline,
// stopped and destroyed timers stay silent, and the client answers without a service.
#include "kavo/host/time/time_service.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "kavo/host/ipc/iremote_object.h"
#include "kavo/host/samgr/system_ability_manager.h"

namespace {

using namespace Kavo;
using namespace Kavo::MiscServices;
using std::chrono::milliseconds;

// Counts expiries and remembers the thread and boot time of the last one.
class CountingTimer : public ITimerInfo {
public:
    void SetType(const int& t) override { type = t; }
    void SetRepeat(bool r) override { repeat = r; }
    void SetInterval(const uint64_t& i) override { interval = i; }
    void SetWantAgent(std::shared_ptr<AbilityRuntime::WantAgent::WantAgent> w) override { wantAgent = std::move(w); }
    void OnTrigger() override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        ++fired_;
        firedAtMs_ = TimeServiceClient::ReadBootClockMs();
        thread_ = std::this_thread::get_id();
        changed_.notify_all();
    }

    bool WaitFor(int count, milliseconds limit)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, limit, [&] { return fired_ >= count; });
    }
    int Fired()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return fired_;
    }
    int64_t FiredAtMs()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return firedAtMs_;
    }
    std::thread::id Thread()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return thread_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int fired_ = 0;
    int64_t firedAtMs_ = 0;
    std::thread::id thread_;
};

TEST(TimeServiceTest, TimersFireOnTheServiceThreadAfterTheirDeadline)
{
    auto service = MakeSptr<TimeService>();
    struct Case {
        const char* name;
        int64_t offsetMs;
    };
    const Case cases[] = {
        {"a deadline in the past fires at once", -1000},
        {"a deadline 40 ms ahead fires after it", 40},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto timer = std::make_shared<CountingTimer>();
        uint64_t id = service->CreateTimer(timer);
        ASSERT_NE(id, 0u);
        int64_t deadline = TimeServiceClient::ReadBootClockMs() + c.offsetMs;
        ASSERT_TRUE(service->StartTimer(id, static_cast<uint64_t>(deadline)));
        ASSERT_TRUE(timer->WaitFor(1, milliseconds(5000)));
        EXPECT_GE(timer->FiredAtMs(), deadline);
        EXPECT_NE(timer->Thread(), std::this_thread::get_id());
        EXPECT_FALSE(service->IsArmed(id)) << "a one-shot timer disarms";
    }
}

TEST(TimeServiceTest, StoppedDestroyedAndUnknownTimers)
{
    auto service = MakeSptr<TimeService>();
    auto stopped = std::make_shared<CountingTimer>();
    auto destroyed = std::make_shared<CountingTimer>();
    auto witness = std::make_shared<CountingTimer>();
    uint64_t now = static_cast<uint64_t>(TimeServiceClient::ReadBootClockMs());
    uint64_t a = service->CreateTimer(stopped);
    uint64_t b = service->CreateTimer(destroyed);
    uint64_t c = service->CreateTimer(witness);
    EXPECT_TRUE(service->StartTimer(a, now + 30));
    EXPECT_TRUE(service->StartTimer(b, now + 30));
    EXPECT_TRUE(service->StopTimer(a));
    EXPECT_TRUE(service->DestroyTimer(b));
    EXPECT_TRUE(service->StartTimer(c, now + 60));
    ASSERT_TRUE(witness->WaitFor(1, milliseconds(5000)));
    EXPECT_EQ(stopped->Fired(), 0);
    EXPECT_EQ(destroyed->Fired(), 0);
    EXPECT_EQ(service->TimerCount(), 2u);
    EXPECT_FALSE(service->StartTimer(b, now)) << "a destroyed id is unknown";
    EXPECT_FALSE(service->StopTimer(999));
    EXPECT_EQ(service->CreateTimer(nullptr), 0u);
}

TEST(TimeServiceTest, RepeatingTimerRearmsByItsInterval)
{
    auto service = MakeSptr<TimeService>();
    auto timer = std::make_shared<CountingTimer>();
    timer->SetRepeat(true);
    timer->SetInterval(10);
    uint64_t id = service->CreateTimer(timer);
    ASSERT_TRUE(service->StartTimer(id, static_cast<uint64_t>(TimeServiceClient::ReadBootClockMs())));
    ASSERT_TRUE(timer->WaitFor(3, milliseconds(5000)));
    EXPECT_TRUE(service->IsArmed(id));
    EXPECT_TRUE(service->StopTimer(id));
}

TEST(TimeServiceClientTest, AnswersWithoutAServiceAndWhenUnavailable)
{
    auto client = TimeServiceClient::GetInstance();
    ASSERT_NE(client, nullptr);
    EXPECT_EQ(client->CreateTimer(std::make_shared<CountingTimer>()), 0u);
    EXPECT_FALSE(client->StartTimer(1, 0));
    EXPECT_FALSE(client->StopTimer(1));
    EXPECT_FALSE(client->DestroyTimer(1));
    EXPECT_GT(client->GetBootTimeMs(), 0) << "the boot clock needs no service";

    auto service = MakeSptr<TimeService>();
    SystemAbilityManagerClient::GetInstance().AddSystemAbility(
        TIME_SERVICE_ID, AsRemoteObject<ITimeService>(sptr<ITimeService>(service)));
    auto timer = std::make_shared<CountingTimer>();
    uint64_t id = client->CreateTimer(timer);
    EXPECT_NE(id, 0u);
    EXPECT_TRUE(client->StartTimer(id, static_cast<uint64_t>(client->GetBootTimeMs())));
    EXPECT_TRUE(timer->WaitFor(1, milliseconds(5000)));
    EXPECT_TRUE(client->DestroyTimer(id));
    SystemAbilityManagerClient::GetInstance().RemoveSystemAbility(TIME_SERVICE_ID);

    TimeServiceClient::SetBootTimeSource([] { return int64_t{42}; });
    EXPECT_EQ(client->GetBootTimeMs(), 42);
    TimeServiceClient::SetBootTimeSource(nullptr);
    TimeServiceClient::SetClientAvailable(false);
    EXPECT_EQ(TimeServiceClient::GetInstance(), nullptr);
    TimeServiceClient::SetClientAvailable(true);
}

}  // namespace
