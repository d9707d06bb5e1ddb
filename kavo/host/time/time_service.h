// TimeService: the host platform's time service. Timers really fire: one worker thread waits
// for the earliest armed deadline of the boot clock and runs OnTrigger there, without holding
// the service's lock; a repeating timer is re-armed interval milliseconds later. All
// operations are thread-safe; destroying the service stops the worker after the callback
// that may be running.
#ifndef KAVO_HOST_TIME_TIME_SERVICE_H
#define KAVO_HOST_TIME_TIME_SERVICE_H

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
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
    struct Timer {
        std::shared_ptr<ITimerInfo> info;
        bool armed = false;
        uint64_t deadlineMs = 0;
    };

    void Run();
    // The id of the earliest armed timer whose deadline has passed, or 0; sets `waitMs` to the
    // time until the earliest deadline (or -1 when nothing is armed).
    uint64_t TakeDue(int64_t& waitMs);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::map<uint64_t, Timer> timers_;
    uint64_t nextId_ = 1;
    bool stopping_ = false;
    std::thread worker_;
};

}  // namespace Kavo::MiscServices

#endif  // KAVO_HOST_TIME_TIME_SERVICE_H
