// The time service: its interface ITimeService (system ability 3702, pure virtual) and the
// client singleton through which callers create, start, stop and destroy timers and read the
// boot clock. Deadlines are milliseconds of the boot clock (CLOCK_BOOTTIME). Thread-safe.
//
//   auto client = TimeServiceClient::GetInstance();
//   uint64_t id = client->CreateTimer(info);
//   client->StartTimer(id, client->GetBootTimeMs() + 30000);
#ifndef KAVO_HOST_TIME_TIME_SERVICE_CLIENT_H
#define KAVO_HOST_TIME_TIME_SERVICE_CLIENT_H

#include <cstdint>
#include <functional>
#include <memory>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/iremote_object.h"
#include "kavo/host/ipc/ref_base.h"
#include "kavo/host/time/itimer_info.h"

namespace Kavo::MiscServices {

class KAVO_HOST_EXPORT ITimeService : public ServiceInterface {
public:
    static const std::u16string& GetDescriptor();

    ~ITimeService() override = default;

    // The new timer's id; 0 when no timer was created.
    virtual uint64_t CreateTimer(std::shared_ptr<ITimerInfo> timerInfo) = 0;
    virtual bool StartTimer(uint64_t timerId, uint64_t triggerTimeMs) = 0;
    virtual bool StopTimer(uint64_t timerId) = 0;
    virtual bool DestroyTimer(uint64_t timerId) = 0;
};

class KAVO_HOST_EXPORT TimeServiceClient : public virtual RefBase {
public:
    using BootTimeSource = std::function<int64_t()>;

    // Null while the client has been made unavailable.
    static sptr<TimeServiceClient> GetInstance();

    // Answer 0 / false when service 3702 is not registered.
    uint64_t CreateTimer(std::shared_ptr<ITimerInfo> timerInfo);
    bool StartTimer(uint64_t timerId, uint64_t triggerTimeMs);
    bool StopTimer(uint64_t timerId);
    bool DestroyTimer(uint64_t timerId);
    // The boot clock in milliseconds; answered whether or not the service is registered.
    int64_t GetBootTimeMs();

    // Control surface.
    static void SetClientAvailable(bool available);
    // Replaces the clock read by GetBootTimeMs; an empty source restores CLOCK_BOOTTIME.
    static void SetBootTimeSource(BootTimeSource source);
    // The boot clock itself, whatever source is set.
    static int64_t ReadBootClockMs();
};

}  // namespace Kavo::MiscServices

#endif  // KAVO_HOST_TIME_TIME_SERVICE_CLIENT_H
