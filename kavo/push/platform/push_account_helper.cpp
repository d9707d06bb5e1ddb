#include "kavo/push/platform/push_account_helper.h"

#include <string>

#include "kavo/host/account/os_account_manager.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/event/teldric_helper.h"
#include "kavo/push/platform/internal/account_query.h"
#include "kavo/push/platform/push_bundle_helper.h"

namespace Kavo::Push {

using AccountSA::OsAccountManager;
using internal::RunAccountQuery;

PushBaseRsp PushAccountHelper::QueryActiveOsAccountIds(std::vector<int>& ids)
{
    return RunAccountQuery({nullptr, "QueryActiveOsAccountIds",
                            "query active os accountIds fail: account sa not started",
                            "QueryActiveOsAccountIds fail: %{public}s", "query active accountId fail: %{public}d",
                            "query active accountId fail: %d"},
                           [&ids]() { return OsAccountManager::QueryActiveOsAccountIds(ids); });
}

PushBaseRsp PushAccountHelper::GetOsAccountLocalIdFromUid(int uid, int& localId)
{
    int32_t code = OsAccountManager::GetOsAccountLocalIdFromUid(uid, localId);
    if (code != 0) {
        PUSH_LOGE("Get accountId local id from uid failed %{public}d", code);
        TeldricHelper::AddEvent(COMPONENT_ACCOUNT, "GetOsAccountLocalIdFromUid", API_STATUS_FAILURE,
                                std::to_string(code));
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Get accountId local id from uid failed %d", code);
    }
    return PushBaseRsp();
}

PushBaseRsp PushAccountHelper::GetForegroundOsAccounts(std::vector<int>& localIds)
{
    std::vector<AccountSA::ForegroundOsAccount> accounts;
    PushBaseRsp rsp = RunAccountQuery(
        {"Call GetForegroundOsAccounts failed %{public}d", nullptr,
         "getForegroundOsAccounts fail: account sa not started", "GetForegroundOsAccounts fail: %{public}s",
         "get foreground accountId failed %{public}d", "get foreground accountId failed %d"},
        [&accounts]() { return OsAccountManager::GetForegroundOsAccounts(accounts); });
    if (rsp.Succeed()) {
        for (const auto& account : accounts) {
            localIds.push_back(account.localId);
        }
    }
    return rsp;
}

PushBaseRsp PushAccountHelper::GetForegroundOsAccountLocalId(int& localId)
{
    return RunAccountQuery(
        {"GetForegroundOsAccountLocalId failed: %{public}d, localId: %{public}d", "GetForegroundOsAccountLocalId",
         "GetForegroundOsAccountLocalId fail: current userId not obtain",
         "GetForegroundOsAccountLocalId fail: %{public}s",
         "GetForegroundOsAccountLocalId retry failed: %{public}d, localId: %{public}d",
         "the os account verifie fail: %d, localId: %d"},
        [&localId]() { return OsAccountManager::GetForegroundOsAccountLocalId(localId); }, &localId);
}

PushBaseRsp PushAccountHelper::IsOsAccountVerified(bool& isVerified)
{
    int localId = -1;
    PushBaseRsp idRsp = GetForegroundOsAccountLocalId(localId);
    if (!idRsp.Succeed() || localId == -1) {
        isVerified = true;
        return PushBaseRsp(PUSH_ERR_NONE, "IsOsAccountVerified failed: userId is %d, desc is %s", localId,
                           idRsp.GetInfo().c_str());
    }
    return RunAccountQuery(
        {"isOsAccountVerified failed: %{public}d, userId: %{public}d", "IsOsAccountVerified",
         "isOsAccountVerified fail: account sa not started", "isOsAccountVerified fail: %{public}s",
         "isOsAccountVerified retry failed: %{public}d, userId: %{public}d",
         "the os account verifie fail: %d, userId: %d"},
        [localId, &isVerified]() { return OsAccountManager::IsOsAccountVerified(localId, isVerified); }, &localId);
}

PushBaseRsp PushBundleHelper::GetCurrAccountId(int& accountId)
{
    return RunAccountQuery({nullptr, nullptr, "get os account localId fail: account sa not started",
                            "Get curr account id fail: %{public}s", "Get os accountId failed",
                            "Get os accountId failed"},
                           [&accountId]() { return OsAccountManager::GetOsAccountLocalIdFromProcess(accountId); });
}

}  // namespace Kavo::Push
