// Looking up a platform service's interface through the system ability manager, waiting for
// a service that is still starting. Shared by the package and process queries; stateless.
#ifndef KAVO_PUSH_PLATFORM_INTERNAL_SERVICE_PROXY_H
#define KAVO_PUSH_PLATFORM_INTERNAL_SERVICE_PROXY_H

#include "kavo/host/ipc/iremote_object.h"
#include "kavo/host/samgr/system_ability_manager.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/common/system_ability_status_service.h"
#include "kavo/push/platform/internal/log_format.h"

namespace Kavo::Push::internal {

// The texts of one service's lookup, set one per line at its call site. Each "Log" text is
// logged, each "Desc" text describes the result; the null-proxy text is both.
struct ServiceProxyTexts {
    const char* noSamgrLog = nullptr;
    const char* noSamgrDesc = nullptr;
    const char* notStartedLog = nullptr;
    const char* notStartedDesc = nullptr;
    InfoFormat retryFailLog{nullptr};  // given the retry wrapper's result
    const char* nullProxyText = nullptr;
};

template <typename I>
PushBaseRsp GetServiceProxy(int abilityId, const ServiceProxyTexts& texts, sptr<I>& out)
{
    sptr<ISystemAbilityManager> samgr = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (samgr == nullptr) {
        PUSH_LOGE("%{public}s", texts.noSamgrLog);
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string(texts.noSamgrDesc));
    }
    sptr<IRemoteObject> remote;
    PushBaseRsp rsp = SystemAbilityStatusService::DoSystemAbilityTaskWithRetry(abilityId, [&]() {
        remote = samgr->GetSystemAbility(abilityId);
        if (remote == nullptr) {
            PUSH_LOGE("%{public}s", texts.notStartedLog);
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string(texts.notStartedDesc));
        }
        return PushBaseRsp();
    });
    if (!rsp.Succeed()) {
        PUSH_LOGE(texts.retryFailLog.text, rsp.GetInfo().c_str());
        return rsp;
    }
    sptr<I> proxy = iface_cast<I>(remote);
    if (proxy == nullptr) {
        PUSH_LOGE("%{public}s", texts.nullProxyText);
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string(texts.nullProxyText));
    }
    out = proxy;
    return PushBaseRsp();
}

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_PLATFORM_INTERNAL_SERVICE_PROXY_H
