#include "kavo/push/validate/push_extension_validate.h"

#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

PushBaseRsp PushExtensionValidate::ValidateSurvivalTime(int survivalTime)
{
    if (survivalTime >= MIN_SURVIVAL_TIME && survivalTime <= MAX_SURVIVAL_TIME) {
        return PushBaseRsp();
    }
    PUSH_LOGE("survival time is invalid: %{public}d", survivalTime);
    return PushBaseRsp(PUSH_ERR_INVALID_PARAM, "survival time is invalid: %d", survivalTime);
}

PushBaseRsp PushExtensionValidate::ValidatePushExtensionInfo(const PushExtensionInfo& info)
{
    return ValidateSurvivalTime(info.GetSurvivalTime());
}

}  // namespace Kavo::Push
