#include "kavo/push/platform/push_account_helper.h"

#include <string>

#include "kavo/host/account/os_account_manager.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/event/teldric_helper.h"
#include "kavo/push/platform/internal/account_query.h"

namespace Kavo::Push {

using AccountSA::OsAccountManager;
using internal::AccountQueryTexts;
using internal::CodeAndIdFormat;
using internal::InfoFormat;
using internal::RunAccountQuery;

PushBaseRsp PushAccountHelper::QueryActiveOsAccountIds(std::vector<int>& ids)
{
    AccountQueryTexts texts;
    texts.eventApiName = "QueryActiveOsAccountIds";
    texts.notStartedText = "query active os accountIds fail: account sa not started";
    texts.retryFailLog = InfoFormat("QueryActiveOsAccountIds fail: %{public}s");
    texts.failLog = CodeAndIdFormat("query active accountId fail: %{public}d");
    texts.failDesc = CodeAndIdFormat("query active accountId fail: %d");
    return RunAccountQuery(texts, [&ids]() { return OsAccountManager::QueryActiveOsAccountIds(ids); });
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
    AccountQueryTexts texts;
    texts.taskFailLog = CodeAndIdFormat("Call GetForegroundOsAccounts failed %{public}d");
    texts.notStartedText = "getForegroundOsAccounts fail: account sa not started";
    texts.retryFailLog = InfoFormat("GetForegroundOsAccounts fail: %{public}s");
    texts.failLog = CodeAndIdFormat("get foreground accountId failed %{public}d");
    texts.failDesc = CodeAndIdFormat("get foreground accountId failed %d");
    std::vector<AccountSA::ForegroundOsAccount> accounts;
    PushBaseRsp rsp =
        RunAccountQuery(texts, [&accounts]() { return OsAccountManager::GetForegroundOsAccounts(accounts); });
    if (rsp.Succeed()) {
        for (const auto& account : accounts) {
            localIds.push_back(account.localId);
        }
    }
    return rsp;
}

PushBaseRsp PushAccountHelper::GetForegroundOsAccountLocalId(int& localId)
{
    AccountQueryTexts texts;
    texts.taskFailLog = CodeAndIdFormat("GetForegroundOsAccountLocalId failed: %{public}d, localId: %{public}d");
    texts.eventApiName = "GetForegroundOsAccountLocalId";
    texts.notStartedText = "GetForegroundOsAccountLocalId fail: current userId not obtain";
    texts.retryFailLog = InfoFormat("GetForegroundOsAccountLocalId fail: %{public}s");
    texts.failLog = CodeAndIdFormat("GetForegroundOsAccountLocalId retry failed: %{public}d, localId: %{public}d");
    texts.failDesc = CodeAndIdFormat("the os account verifie fail: %d, localId: %d");
    return RunAccountQuery(
        texts, [&localId]() { return OsAccountManager::GetForegroundOsAccountLocalId(localId); }, &localId);
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
    AccountQueryTexts texts;
    texts.taskFailLog = CodeAndIdFormat("isOsAccountVerified failed: %{public}d, userId: %{public}d");
    texts.eventApiName = "IsOsAccountVerified";
    texts.notStartedText = "isOsAccountVerified fail: account sa not started";
    texts.retryFailLog = InfoFormat("isOsAccountVerified fail: %{public}s");
    texts.failLog = CodeAndIdFormat("isOsAccountVerified retry failed: %{public}d, userId: %{public}d");
    texts.failDesc = CodeAndIdFormat("the os account verifie fail: %d, userId: %d");
    return RunAccountQuery(
        texts, [localId, &isVerified]() { return OsAccountManager::IsOsAccountVerified(localId, isVerified); },
        &localId);
}

}  // namespace Kavo::Push
