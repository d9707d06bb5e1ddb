// A timer for the time service's tests: it counts its expiries and keeps the last one's time and thread.
#ifndef KAVO_TESTS_HOST_TIME_COUNTING_TIMER_H
#define KAVO_TESTS_HOST_TIME_COUNTING_TIMER_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <tuple>

#include "kavo/host/time/itimer_info.h"
#include "kavo/host/time/time_service_client.h"

namespace KavoTest {

// Counts expiries and remembers the boot time and thread of the last one.
class CountingTimer : public Kavo::MiscServices::ITimerInfo {
public:
    void SetType(const int& t) override { type = t; }
    void SetRepeat(bool r) override { repeat = r; }
    void SetInterval(const uint64_t& i) override { interval = i; }
    void SetWantAgent(std::shared_ptr<Kavo::AbilityRuntime::WantAgent::WantAgent> w) override
    {
        wantAgent = std::move(w);
    }
    void OnTrigger() override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        ++fired_;
        firedAtMs_ = Kavo::MiscServices::TimeServiceClient::ReadBootClockMs();
        thread_ = std::this_thread::get_id();
        changed_.notify_all();
    }
    // Waits up to 5 s for `count` expiries (0: not at all); then the count, boot time and thread.
    std::tuple<int, int64_t, std::thread::id> WaitFor(int count)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(5), [&] { return fired_ >= count; });
        return {fired_, firedAtMs_, thread_};
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int fired_ = 0;
    int64_t firedAtMs_ = 0;
    std::thread::id thread_;
};

}  // namespace KavoTest

#endif  // KAVO_TESTS_HOST_TIME_COUNTING_TIMER_H
