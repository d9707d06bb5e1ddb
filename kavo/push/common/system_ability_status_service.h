// The process-wide registry of platform-service states, and the task runner that waits for a
// restarting service and retries a failed call once. The registry is guarded by a recursive
// mutex held only inside SetStatus/GetStatus; the runner may be called from any thread and
// blocks it for up to about ten seconds while it waits.
#ifndef KAVO_PUSH_COMMON_SYSTEM_ABILITY_STATUS_SERVICE_H
#define KAVO_PUSH_COMMON_SYSTEM_ABILITY_STATUS_SERVICE_H

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT SystemAbilityStatusService {
public:
    enum Status : uint8_t { UNKNOWN = 0, STARTED = 1, STOPPED = 2 };

    // The registry only answers once this anchor id has an entry; before that, UNKNOWN.
    static constexpr int ANCHOR_ABILITY_ID = 65728;

    static std::map<int, Status> saStatuss;
    static std::recursive_mutex mutex;

    // Reported by the owner of the process; nothing in the library calls it.
    static void SetStatus(int const& abilityId, Status const& status);
    static Status GetStatus(int const& abilityId);
    // Runs `task`; on failure waits for a stopped service (or ability 1301's retry code) and
    // runs it once more. At most two attempts.
    static PushBaseRsp DoSystemAbilityTaskWithRetry(int const& abilityId, std::function<PushBaseRsp()> const& task);
    static Status LoopCheckStatus(int const& abilityId);
    static PushBaseRsp WaitAndRetry(int const& abilityId, std::function<PushBaseRsp()> const& task, PushBaseRsp& rsp);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_COMMON_SYSTEM_ABILITY_STATUS_SERVICE_H
