// IAccountService: the account service's interface, reached under system ability 200. It
// serves both the OS accounts and the distributed (cloud) account of the device owner. Pure
// virtual; an implementation must be callable from any thread.
#ifndef KAVO_HOST_ACCOUNT_IACCOUNT_SERVICE_H
#define KAVO_HOST_ACCOUNT_IACCOUNT_SERVICE_H

#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/iremote_object.h"

namespace Kavo::AccountSA {

using ErrCode = int32_t;

// The code of every operation when the account service cannot be reached.
constexpr ErrCode ACCOUNT_SERVICE_UNAVAILABLE = 4194321;
// Answered for an account or uid the service does not know.
constexpr ErrCode ACCOUNT_NOT_FOUND = 4194323;
// Each OS account owns the uids [localId * UIDS_PER_ACCOUNT, (localId + 1) * UIDS_PER_ACCOUNT).
constexpr int32_t UIDS_PER_ACCOUNT = 200000;

struct ForegroundOsAccount {
    int32_t localId = -1;
    uint64_t displayId = 0;
};

struct KavoAccountInfo {
    std::string name;
    std::string uid;
    std::string status;
};

// The uid text of the distributed account when nobody is logged in.
inline const char* const ANONYMOUS_ACCOUNT_UID = "kavoAnonymousUid";

class KAVO_HOST_EXPORT IAccountService : public ServiceInterface {
public:
    static const std::u16string& GetDescriptor();

    ~IAccountService() override = default;

    // Clears `ids`, then fills it.
    virtual ErrCode QueryActiveOsAccountIds(std::vector<int32_t>& ids) = 0;
    virtual ErrCode GetOsAccountLocalIdFromUid(int32_t uid, int32_t& localId) = 0;
    virtual ErrCode GetOsAccountLocalIdFromProcess(int32_t& localId) = 0;
    virtual ErrCode GetForegroundOsAccounts(std::vector<ForegroundOsAccount>& accounts) = 0;
    virtual ErrCode GetForegroundOsAccountLocalId(int32_t& localId) = 0;
    virtual ErrCode IsOsAccountVerified(int32_t localId, bool& isVerified) = 0;
    virtual ErrCode GetKavoAccountInfo(KavoAccountInfo& info) = 0;
};

}  // namespace Kavo::AccountSA

#endif  // KAVO_HOST_ACCOUNT_IACCOUNT_SERVICE_H
