// PushTimerInfo: one timer of the push service as the time service sees it: its type bits,
// repetition and want agent (the base record), its duration in seconds, the time service's
// id and whether it must wake the device. Shared between the owner and the time service; the
// fields are plain values, so the owner must not change them while an expiry may run. The
// expiry callback runs on a thread of the time service.
//
//   auto timer = std::make_shared<PushTimerInfo>(30);
//   timer->SetCallback([] { Refresh(); });
//   PushTimerHelper::StartTimer(timer);
#ifndef KAVO_PUSH_PLATFORM_PUSH_TIMER_INFO_H
#define KAVO_PUSH_PLATFORM_PUSH_TIMER_INFO_H

#include <cstdint>
#include <functional>
#include <memory>

#include "kavo/host/time/itimer_info.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushTimerInfo : public MiscServices::ITimerInfo {
public:
    explicit PushTimerInfo(const int& duration);
    ~PushTimerInfo() override;

    void SetType(const int& type) override;
    void SetRepeat(bool repeat) override;
    void SetInterval(const unsigned long& interval) override;
    void SetWantAgent(std::shared_ptr<AbilityRuntime::WantAgent::WantAgent> wantAgent) override;
    // Runs the callback, if one is set.
    void OnTrigger() override;
    virtual void SetTimerId(const unsigned long& timerId);
    virtual unsigned long GetTimerId();
    virtual void SetDuration(const int& duration);
    virtual int GetDuration();
    virtual void SetWakeup(const bool& wakeup);
    virtual bool GetWakeup();

    // What the expiry does; set it before the timer starts.
    void SetCallback(std::function<void()> callback);

private:
    int duration_ = 0;
    uint64_t timerId_ = 0;
    bool wakeup_ = false;
    std::function<void()> callback_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_PLATFORM_PUSH_TIMER_INFO_H
