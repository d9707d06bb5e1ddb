#include "kavo/push/platform/push_distribute_account_helper.h"

#include "kavo/host/account/os_account_manager.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/event/teldric_helper.h"

namespace Kavo::Push {

namespace {

const std::string ANONYMOUS_UID = "kavoAnonymousUid";

}  // namespace

PushBaseRsp PushDistributeAccountHelper::GetOsDistributedId(std::string& distributedId)
{
    AccountSA::KavoAccountInfo info;
    int32_t code = AccountSA::KavoAccountKits::GetInstance().GetKavoAccountInfo(info);
    if (code != 0) {
        PUSH_LOGE("Get os account distributed info failed:%{public}d", code);
        TeldricHelper::AddEvent(COMPONENT_ACCOUNT, "GetKavoAccountInfo", API_STATUS_FAILURE, std::to_string(code));
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Get os account distributed id failed:%d", code);
    }
    if (info.uid == ANONYMOUS_UID) {
        PUSH_LOGE("Os account id not login");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Os account id not login");
    }
    distributedId = info.uid;
    return PushBaseRsp();
}

}  // namespace Kavo::Push
