#include "kavo/push/platform/internal/account_query.h"

#include <climits>
#include <string>

#include "kavo/host/account/iaccount_service.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/common/system_ability_status_service.h"
#include "kavo/push/event/teldric_helper.h"

namespace Kavo::Push::internal {

namespace {

constexpr int ACCOUNT_ABILITY_ID = 200;
constexpr int32_t ERR_ACCOUNT_SA_NOT_REACHED = AccountSA::ACCOUNT_SERVICE_UNAVAILABLE;

}  // namespace

PushBaseRsp RunAccountQuery(const AccountQueryTexts& texts, const std::function<int32_t()>& platformCall,
                            const int* localId)
{
    // A run that never reached the platform must not read as success.
    int32_t code = INT32_MIN;
    auto shownId = [localId]() { return localId == nullptr ? 0 : *localId; };
    PushBaseRsp rsp = SystemAbilityStatusService::DoSystemAbilityTaskWithRetry(ACCOUNT_ABILITY_ID, [&]() {
        code = platformCall();
        if (code != 0 && texts.taskFailLog.text != nullptr) {
            PUSH_LOGE(texts.taskFailLog.text, code, shownId());
        }
        if (code != 0 && texts.eventApiName != nullptr) {
            TeldricHelper::AddEvent(COMPONENT_ACCOUNT, texts.eventApiName, API_STATUS_FAILURE, std::to_string(code));
        }
        if (code == ERR_ACCOUNT_SA_NOT_REACHED) {
            PUSH_LOGE("%{public}s", texts.notStartedText);
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string(texts.notStartedText));
        }
        return PushBaseRsp(PUSH_SUCCESS);
    });
    if (!rsp.Succeed()) {
        PUSH_LOGE(texts.retryFailLog.text, rsp.GetInfo().c_str());
        return rsp;
    }
    if (code != 0) {
        PUSH_LOGE(texts.failLog.text, code, shownId());
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, texts.failDesc.text, code, shownId());
    }
    return PushBaseRsp();
}

}  // namespace Kavo::Push::internal
