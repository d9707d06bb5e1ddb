#include "kavo/host/time/time_service.h"

#include <chrono>

namespace Kavo::MiscServices {

TimeService::TimeService() : worker_([this] { Run(); }) {}

TimeService::~TimeService()
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
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
    std::lock_guard<std::mutex> lock(mutex_);
    uint64_t id = nextId_++;
    timers_[id].info = std::move(timerInfo);
    return id;
}

bool TimeService::StartTimer(uint64_t timerId, uint64_t triggerTimeMs)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = timers_.find(timerId);
        if (it == timers_.end()) {
            return false;
        }
        it->second.armed = true;
        it->second.deadlineMs = triggerTimeMs;
    }
    changed_.notify_all();
    return true;
}

bool TimeService::StopTimer(uint64_t timerId)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = timers_.find(timerId);
    if (it == timers_.end()) {
        return false;
    }
    it->second.armed = false;
    return true;
}

bool TimeService::DestroyTimer(uint64_t timerId)
{
    std::shared_ptr<ITimerInfo> released;  // dropped after the lock
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = timers_.find(timerId);
    if (it == timers_.end()) {
        return false;
    }
    released = std::move(it->second.info);
    timers_.erase(it);
    return true;
}

size_t TimeService::TimerCount() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return timers_.size();
}

bool TimeService::IsArmed(uint64_t timerId) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = timers_.find(timerId);
    return it != timers_.end() && it->second.armed;
}

uint64_t TimeService::TakeDue(int64_t& waitMs)
{
    int64_t now = TimeServiceClient::ReadBootClockMs();
    waitMs = -1;
    for (auto& [id, timer] : timers_) {
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

void TimeService::Run()
{
    std::unique_lock<std::mutex> lock(mutex_);
    while (!stopping_) {
        int64_t waitMs = -1;
        uint64_t due = TakeDue(waitMs);
        if (due != 0) {
            std::shared_ptr<ITimerInfo> info = timers_[due].info;
            lock.unlock();
            info->OnTrigger();
            info.reset();
            lock.lock();
            continue;
        }
        if (waitMs < 0) {
            changed_.wait(lock);
        } else {
            changed_.wait_for(lock, std::chrono::milliseconds(waitMs));
        }
    }
}

}  // namespace Kavo::MiscServices
