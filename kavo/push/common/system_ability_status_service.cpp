#include "kavo/push/common/system_ability_status_service.h"

#include <chrono>
#include <thread>

#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

std::map<int, SystemAbilityStatusService::Status> SystemAbilityStatusService::saStatuss;
std::recursive_mutex SystemAbilityStatusService::mutex;

namespace {

constexpr int STATUS_POLL_COUNT = 10;
constexpr std::chrono::seconds STATUS_POLL_INTERVAL{1};
constexpr int WAIT_RETRY_ABILITY_ID = 1301;

}  // namespace

void SystemAbilityStatusService::SetStatus(int const& abilityId, Status const& status)
{
    std::lock_guard<std::recursive_mutex> lock(mutex);
    saStatuss[abilityId] = status;
}

SystemAbilityStatusService::Status SystemAbilityStatusService::GetStatus(int const& abilityId)
{
    std::lock_guard<std::recursive_mutex> lock(mutex);
    if (saStatuss.find(ANCHOR_ABILITY_ID) == saStatuss.end()) {
        return UNKNOWN;
    }
    auto it = saStatuss.find(abilityId);
    return it == saStatuss.end() ? STOPPED : it->second;
}

SystemAbilityStatusService::Status SystemAbilityStatusService::LoopCheckStatus(int const& abilityId)
{
    for (int i = 0; i < STATUS_POLL_COUNT; ++i) {
        std::this_thread::sleep_for(STATUS_POLL_INTERVAL);
        if (GetStatus(abilityId) == STARTED) {
            break;
        }
    }
    return GetStatus(abilityId);
}

PushBaseRsp SystemAbilityStatusService::DoSystemAbilityTaskWithRetry(int const& abilityId,
                                                                     std::function<PushBaseRsp()> const& task)
{
    PUSH_LOGD("Begin do task for ability:%{public}d", abilityId);
    PushBaseRsp rsp = task();
    if (rsp.Succeed()) {
        PUSH_LOGD("End do task for ability:%{public}d firstTime succeed", abilityId);
        return rsp;
    }
    if (abilityId == WAIT_RETRY_ABILITY_ID && rsp.GetInnerErr() == INNER_ERR_SA_WAIT_AND_RETRY) {
        return WaitAndRetry(abilityId, task, rsp);
    }
    switch (GetStatus(abilityId)) {
        case STOPPED:
            return WaitAndRetry(abilityId, task, rsp);
        case STARTED:
            // The service is up, so the failure is the call's own: no retry.
            PUSH_LOGE("Task for ability:%{public}d is started", abilityId);
            rsp.SetInnerErr(INNER_ERR_SA_INVOKE_FAILED);
            return rsp;
        case UNKNOWN:
        default:
            PUSH_LOGD("End do task for ability:%{public}d failed", abilityId);
            return rsp;
    }
}

PushBaseRsp SystemAbilityStatusService::WaitAndRetry(int const& abilityId, std::function<PushBaseRsp()> const& task,
                                                     PushBaseRsp& rsp)
{
    if (LoopCheckStatus(abilityId) == STOPPED) {
        PUSH_LOGE("Task for ability:%{public}d stopped", abilityId);
        rsp.SetErr(PUSH_ERR_SYSTEM_INTERNAL);
        rsp.SetInnerErr(INNER_ERR_SA_STOPPED);
        return rsp;
    }
    PUSH_LOGW("Begin do task for ability:%{public}d again", abilityId);
    rsp = task();
    if (!rsp.Succeed()) {
        PUSH_LOGE("Sa interface invoke fail");
        rsp.SetInnerErr(INNER_ERR_SA_INVOKE_FAILED);
    }
    return rsp;
}

}  // namespace Kavo::Push
