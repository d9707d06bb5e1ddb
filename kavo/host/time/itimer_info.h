// ITimerInfo: what a client tells the time service about one timer (type bits, repetition,
// the want agent to fire) and the callback the service runs at expiry; and WantAgent, the
// small record of the ability a timer may start. Plain values: the fields are not locked, so
// the owner and the expiry thread must not write them at once.
#ifndef KAVO_HOST_TIME_ITIMER_INFO_H
#define KAVO_HOST_TIME_ITIMER_INFO_H

#include <cstdint>
#include <memory>
#include <string>

#include "kavo/host/host_export.h"
#include "kavo/host/want/want_params.h"

namespace Kavo::AbilityRuntime::WantAgent {

struct WantAgent {
    std::string bundleName;
    std::string abilityName;
    AAFwk::WantParams params;
};

}  // namespace Kavo::AbilityRuntime::WantAgent

namespace Kavo::MiscServices {

class KAVO_HOST_EXPORT ITimerInfo {
public:
    ITimerInfo() = default;
    virtual ~ITimerInfo() = default;

    virtual void SetType(const int& type) = 0;
    virtual void SetRepeat(bool repeat) = 0;
    virtual void SetInterval(const uint64_t& interval) = 0;
    virtual void SetWantAgent(std::shared_ptr<AbilityRuntime::WantAgent::WantAgent> wantAgent) = 0;
    // Runs on a thread of the time service when the timer expires.
    virtual void OnTrigger() = 0;

    int type = 0;
    bool repeat = false;
    uint64_t interval = 0;  // milliseconds between expiries of a repeating timer
    std::shared_ptr<AbilityRuntime::WantAgent::WantAgent> wantAgent;

    static constexpr int TIMER_TYPE_REALTIME = 1 << 0;
    static constexpr int TIMER_TYPE_WAKEUP = 1 << 1;
    static constexpr int TIMER_TYPE_EXACT = 1 << 2;
};

}  // namespace Kavo::MiscServices

#endif  // KAVO_HOST_TIME_ITIMER_INFO_H
