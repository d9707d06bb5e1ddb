// PushTimerHelper: creating, starting, stopping, restarting and destroying push timers with
// the platform time service. Deadlines are the boot clock now plus the timer's duration in
// seconds. Only creation waits for a time service that is still starting. Static and
// stateless; callable from any thread.
//
//   auto timer = std::make_shared<PushTimerInfo>(30);
//   if (PushTimerHelper::StartTimer(timer).Succeed()) { ...; PushTimerHelper::DestoryTimer(timer); }
#ifndef KAVO_PUSH_PLATFORM_PUSH_TIMER_HELPER_H
#define KAVO_PUSH_PLATFORM_PUSH_TIMER_HELPER_H

#include <cstdint>
#include <memory>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/platform/push_timer_info.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushTimerHelper {
public:
    // Sets the type bits (realtime and exact, plus wakeup when asked), then StartNewTimer.
    static PushBaseRsp StartTimer(const std::shared_ptr<PushTimerInfo>& timerInfo);
    // Creates a new timer (overwriting the info's id) and starts it.
    static PushBaseRsp StartNewTimer(const std::shared_ptr<PushTimerInfo>& timerInfo);
    static PushBaseRsp StopTimer(const std::shared_ptr<PushTimerInfo>& timerInfo);
    static PushBaseRsp DestoryTimer(const std::shared_ptr<PushTimerInfo>& timerInfo);
    // Starts the existing timer again with a new deadline.
    static PushBaseRsp RestartTimer(const std::shared_ptr<PushTimerInfo>& timerInfo);
    // Wall-clock milliseconds since the Unix epoch.
    static int64_t GetTimestampMs();
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_PLATFORM_PUSH_TIMER_HELPER_H
