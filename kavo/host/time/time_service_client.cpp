#include "kavo/host/time/time_service_client.h"

#include <time.h>

#include <atomic>
#include <mutex>

#include "kavo/host/samgr/system_ability_manager.h"

namespace Kavo::MiscServices {

namespace {

constexpr int64_t MS_PER_SECOND = 1000;
constexpr int64_t NS_PER_MS = 1000000;

std::atomic<bool> g_clientAvailable{true};

// Never destroyed: timer callbacks on detached threads may read the clock while the process exits.
struct BootTimeSourceSlot {
    std::mutex mutex;
    TimeServiceClient::BootTimeSource source;
};

BootTimeSourceSlot& SourceSlot()
{
    static BootTimeSourceSlot& slot = *new BootTimeSourceSlot;
    return slot;
}

sptr<ITimeService> GetService()
{
    auto samgr = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (samgr == nullptr) {
        return nullptr;
    }
    return iface_cast<ITimeService>(samgr->GetSystemAbility(TIME_SERVICE_ABILITY_ID));
}

}  // namespace

const std::u16string& ITimeService::GetDescriptor()
{
    static const std::u16string descriptor = u"kavo.miscservices.ITimeService";
    return descriptor;
}

sptr<TimeServiceClient> TimeServiceClient::GetInstance()
{
    static sptr<TimeServiceClient>* client = new sptr<TimeServiceClient>(new TimeServiceClient());  // lives to exit
    return g_clientAvailable.load() ? *client : nullptr;
}

uint64_t TimeServiceClient::CreateTimer(std::shared_ptr<ITimerInfo> timerInfo)
{
    sptr<ITimeService> service = GetService();
    return service == nullptr ? 0 : service->CreateTimer(std::move(timerInfo));
}

bool TimeServiceClient::StartTimer(uint64_t timerId, uint64_t triggerTimeMs)
{
    sptr<ITimeService> service = GetService();
    return service != nullptr && service->StartTimer(timerId, triggerTimeMs);
}

bool TimeServiceClient::StopTimer(uint64_t timerId)
{
    sptr<ITimeService> service = GetService();
    return service != nullptr && service->StopTimer(timerId);
}

bool TimeServiceClient::DestroyTimer(uint64_t timerId)
{
    sptr<ITimeService> service = GetService();
    return service != nullptr && service->DestroyTimer(timerId);
}

int64_t TimeServiceClient::GetBootTimeMs()
{
    BootTimeSource source;
    {
        std::lock_guard<std::mutex> lock(SourceSlot().mutex);
        source = SourceSlot().source;
    }
    return source ? source() : ReadBootClockMs();
}

void TimeServiceClient::SetClientAvailable(bool available)
{
    g_clientAvailable.store(available);
}

void TimeServiceClient::SetBootTimeSource(BootTimeSource source)
{
    std::lock_guard<std::mutex> lock(SourceSlot().mutex);
    SourceSlot().source = std::move(source);
}

int64_t TimeServiceClient::ReadBootClockMs()
{
    struct timespec now {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * MS_PER_SECOND + now.tv_nsec / NS_PER_MS;
}

}  // namespace Kavo::MiscServices
