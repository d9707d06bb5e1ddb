// The account clients: OsAccountManager (OS accounts) and KavoAccountKits (the distributed
// account). Each call looks the account service up under system ability 200 and answers
// ACCOUNT_SERVICE_UNAVAILABLE (4194321) when it is not registered.
// Stateless; callable from any thread.
#ifndef KAVO_HOST_ACCOUNT_OS_ACCOUNT_MANAGER_H
#define KAVO_HOST_ACCOUNT_OS_ACCOUNT_MANAGER_H

#include <cstdint>
#include <vector>

#include "kavo/host/account/iaccount_service.h"
#include "kavo/host/host_export.h"

namespace Kavo::AccountSA {

class KAVO_HOST_EXPORT OsAccountManager {
public:
    // Clears `ids` (when the service is reached), then lets the service fill it.
    static ErrCode QueryActiveOsAccountIds(std::vector<int32_t>& ids);
    static ErrCode GetOsAccountLocalIdFromUid(int32_t uid, int32_t& localId);
    static ErrCode GetOsAccountLocalIdFromProcess(int32_t& localId);
    static ErrCode GetForegroundOsAccounts(std::vector<ForegroundOsAccount>& accounts);
    static ErrCode GetForegroundOsAccountLocalId(int32_t& localId);
    static ErrCode IsOsAccountVerified(int32_t localId, bool& isVerified);
};

class KAVO_HOST_EXPORT KavoAccountKits {
public:
    static KavoAccountKits& GetInstance();

    ErrCode GetKavoAccountInfo(KavoAccountInfo& info);

private:
    KavoAccountKits() = default;
};

}  // namespace Kavo::AccountSA

#endif  // KAVO_HOST_ACCOUNT_OS_ACCOUNT_MANAGER_H
