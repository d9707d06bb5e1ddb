#include "kavo/push/platform/system_clock_util.h"

#include <string>

#include "kavo/host/time/time_service_client.h"
#include "kavo/push/event/teldric_helper.h"

namespace Kavo::Push {

int64_t SystemClockUtil::GetBootTimeMillis()
{
    auto client = MiscServices::TimeServiceClient::GetInstance();
    int64_t bootTime = client == nullptr ? 0 : client->GetBootTimeMs();
    if (bootTime <= 0) {
        TeldricHelper::AddEvent(COMPONENT_TIMER, "GetBootTimeMs", API_STATUS_FAILURE, std::to_string(bootTime));
        return -1;
    }
    return bootTime;
}

}  // namespace Kavo::Push
