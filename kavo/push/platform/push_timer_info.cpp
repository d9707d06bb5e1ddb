#include "kavo/push/platform/push_timer_info.h"

namespace Kavo::Push {

PushTimerInfo::PushTimerInfo(const int& duration) : duration_(duration) {}

PushTimerInfo::~PushTimerInfo() = default;

void PushTimerInfo::SetType(const int& timerType)
{
    type = timerType;
}

void PushTimerInfo::SetRepeat(bool repeatTimer)
{
    repeat = repeatTimer;
}

void PushTimerInfo::SetInterval(const unsigned long& timerInterval)
{
    interval = timerInterval;
}

void PushTimerInfo::SetWantAgent(std::shared_ptr<AbilityRuntime::WantAgent::WantAgent> agent)
{
    wantAgent = std::move(agent);
}

void PushTimerInfo::OnTrigger()
{
    if (callback_) {
        callback_();
    }
}

void PushTimerInfo::SetTimerId(const unsigned long& timerId)
{
    timerId_ = timerId;
}

unsigned long PushTimerInfo::GetTimerId()
{
    return timerId_;
}

void PushTimerInfo::SetDuration(const int& duration)
{
    duration_ = duration;
}

int PushTimerInfo::GetDuration()
{
    return duration_;
}

void PushTimerInfo::SetWakeup(const bool& wakeup)
{
    wakeup_ = wakeup;
}

bool PushTimerInfo::GetWakeup()
{
    return wakeup_;
}

void PushTimerInfo::SetCallback(std::function<void()> callback)
{
    callback_ = std::move(callback);
}

}  // namespace Kavo::Push
