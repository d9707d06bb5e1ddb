#include "kavo/host/time/time_service.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

namespace Kavo::MiscServices {

// Everything the worker thread touches. The worker holds its own reference, so the service
// object may go away while a callback runs on the worker.
struct TimeService::State {
    struct Timer {
        std::shared_ptr<ITimerInfo> info;
        bool armed = false;
        uint64_t deadlineMs = 0;
    };

    // The id of the earliest armed timer whose deadline has passed, or 0; sets `waitMs` to the
    // time until the earliest deadline (or -1 when nothing is armed). Called with `mutex` held.
    uint64_t TakeDue(int64_t& waitMs);

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::map<uint64_t, Timer> timers;
    uint64_t nextId = 1;
    bool stopping = false;
};

TimeService::TimeService() : state_(std::make_shared<State>()), worker_([state = state_] { Run(state); }) {}

TimeService::~TimeService()
{
    {
        std::lock_guard<std::mutex> lock(state_->mutex);
        state_->stopping = true;
    }
    state_->changed.notify_all();
    if (worker_.get_id() == std::this_thread::get_id()) {
        worker_.detach();  // the last reference went away inside a callback
    } else {
        worker_.join();
    }
}

uint64_t TimeService::CreateTimer(std::shared_ptr<ITimerInfo> timerInfo)
{
    if (timerInfo == nullptr) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    uint64_t id = state_->nextId++;
    state_->timers[id].info = std::move(timerInfo);
    return id;
}

bool TimeService::StartTimer(uint64_t timerId, uint64_t triggerTimeMs)
{
    // Notified under the lock: once it is released the timer may fire and its callback may
    // destroy this service, so nothing of `this` is touched after that.
    std::lock_guard<std::mutex> lock(state_->mutex);
    auto it = state_->timers.find(timerId);
    if (it == state_->timers.end()) {
        return false;
    }
    it->second.armed = true;
    it->second.deadlineMs = triggerTimeMs;
    state_->changed.notify_all();
    return true;
}

bool TimeService::StopTimer(uint64_t timerId)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    auto it = state_->timers.find(timerId);
    if (it == state_->timers.end()) {
        return false;
    }
    it->second.armed = false;
    return true;
}

bool TimeService::DestroyTimer(uint64_t timerId)
{
    std::shared_ptr<ITimerInfo> released;  // the info's destructor runs after the lock is let go
    std::lock_guard<std::mutex> lock(state_->mutex);
    auto it = state_->timers.find(timerId);
    if (it == state_->timers.end()) {
        return false;
    }
    released = std::move(it->second.info);
    state_->timers.erase(it);
    return true;
}

size_t TimeService::TimerCount() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    return state_->timers.size();
}

bool TimeService::IsArmed(uint64_t timerId) const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    auto it = state_->timers.find(timerId);
    return it != state_->timers.end() && it->second.armed;
}

uint64_t TimeService::State::TakeDue(int64_t& waitMs)
{
    int64_t now = TimeServiceClient::ReadBootClockMs();
    waitMs = -1;
    for (auto& [id, timer] : timers) {
        if (!timer.armed) {
            continue;
        }
        int64_t left = static_cast<int64_t>(timer.deadlineMs) - now;
        if (left <= 0) {
            if (timer.info->repeat && timer.info->interval > 0) {
                timer.deadlineMs += timer.info->interval;
            } else {
                timer.armed = false;
            }
            return id;
        }
        if (waitMs < 0 || left < waitMs) {
            waitMs = left;
        }
    }
    return 0;
}

void TimeService::Run(const std::shared_ptr<State>& state)
{
    std::unique_lock<std::mutex> lock(state->mutex);
    while (!state->stopping) {
        int64_t waitMs = -1;
        uint64_t due = state->TakeDue(waitMs);
        if (due != 0) {
            std::shared_ptr<ITimerInfo> info = state->timers[due].info;
            lock.unlock();
            info->OnTrigger();
            info.reset();
            lock.lock();
            continue;
        }
        if (waitMs < 0) {
            state->changed.wait(lock);
        } else {
            state->changed.wait_for(lock, std::chrono::milliseconds(waitMs));
        }
    }
}

}  // namespace Kavo::MiscServices
