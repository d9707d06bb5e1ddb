// TimeService: the host platform's time service. Timers really fire: one worker thread waits
// for the earliest armed deadline of the boot clock and runs OnTrigger there, without holding
// the service's lock; a repeating timer is re-armed interval milliseconds later. All
// operations are thread-safe; destroying the service stops the worker after the callback
// that may be running. The service may be destroyed from inside OnTrigger (its last
// reference dropped there): the worker shares ownership of the timers and the lock, so it
// finishes on live state and ends by itself.
#ifndef KAVO_HOST_TIME_TIME_SERVICE_H
#define KAVO_HOST_TIME_TIME_SERVICE_H

#include <cstdint>
#include <memory>
#include <thread>

#include "kavo/host/host_export.h"
#include "kavo/host/time/time_service_client.h"

namespace Kavo::MiscServices {

class KAVO_HOST_EXPORT TimeService : public ITimeService {
public:
    TimeService();
    ~TimeService() override;
    TimeService(const TimeService&) = delete;
    TimeService& operator=(const TimeService&) = delete;

    uint64_t CreateTimer(std::shared_ptr<ITimerInfo> timerInfo) override;
    // Arms the timer for `triggerTimeMs` of the boot clock; a deadline already past fires at once.
    bool StartTimer(uint64_t timerId, uint64_t triggerTimeMs) override;
    bool StopTimer(uint64_t timerId) override;
    bool DestroyTimer(uint64_t timerId) override;

    // Created timers, armed or not.
    size_t TimerCount() const;
    // Whether the timer exists and waits for its deadline.
    bool IsArmed(uint64_t timerId) const;

private:
    struct State;

    static void Run(const std::shared_ptr<State>& state);

    std::shared_ptr<State> state_;
    std::thread worker_;
};

}  // namespace Kavo::MiscServices

#endif  // KAVO_HOST_TIME_TIME_SERVICE_H
