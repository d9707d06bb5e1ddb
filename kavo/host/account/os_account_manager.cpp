#include "kavo/host/account/os_account_manager.h"

#include "kavo/host/samgr/system_ability_manager.h"

namespace Kavo::AccountSA {

const std::u16string& IAccountService::GetDescriptor()
{
    static const std::u16string descriptor = u"kavo.accountfwk.IAccountService";
    return descriptor;
}

namespace {

sptr<IAccountService> GetService()
{
    auto samgr = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (samgr == nullptr) {
        return nullptr;
    }
    return iface_cast<IAccountService>(samgr->GetSystemAbility(ACCOUNT_SERVICE_ABILITY_ID));
}

template <typename Call>
ErrCode WithService(Call&& call)
{
    sptr<IAccountService> service = GetService();
    if (service == nullptr) {
        return ACCOUNT_SERVICE_UNAVAILABLE;
    }
    return call(*service);
}

}  // namespace

ErrCode OsAccountManager::QueryActiveOsAccountIds(std::vector<int32_t>& ids)
{
    return WithService([&ids](IAccountService& s) {
        ids.clear();
        return s.QueryActiveOsAccountIds(ids);
    });
}

ErrCode OsAccountManager::GetOsAccountLocalIdFromUid(int32_t uid, int32_t& localId)
{
    return WithService([uid, &localId](IAccountService& s) { return s.GetOsAccountLocalIdFromUid(uid, localId); });
}

ErrCode OsAccountManager::GetOsAccountLocalIdFromProcess(int32_t& localId)
{
    return WithService([&localId](IAccountService& s) { return s.GetOsAccountLocalIdFromProcess(localId); });
}

ErrCode OsAccountManager::GetForegroundOsAccounts(std::vector<ForegroundOsAccount>& accounts)
{
    return WithService([&accounts](IAccountService& s) { return s.GetForegroundOsAccounts(accounts); });
}

ErrCode OsAccountManager::GetForegroundOsAccountLocalId(int32_t& localId)
{
    return WithService([&localId](IAccountService& s) { return s.GetForegroundOsAccountLocalId(localId); });
}

ErrCode OsAccountManager::IsOsAccountVerified(int32_t localId, bool& isVerified)
{
    return WithService(
        [localId, &isVerified](IAccountService& s) { return s.IsOsAccountVerified(localId, isVerified); });
}

KavoAccountKits& KavoAccountKits::GetInstance()
{
    static KavoAccountKits* kits = new KavoAccountKits();  // lives to exit
    return *kits;
}

ErrCode KavoAccountKits::GetKavoAccountInfo(KavoAccountInfo& info)
{
    return WithService([&info](IAccountService& s) { return s.GetKavoAccountInfo(info); });
}

}  // namespace Kavo::AccountSA
