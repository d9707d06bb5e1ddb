// PushAccountHelper: the OS accounts of the device: the active and foreground accounts, the
// account owning a uid, and whether the foreground account is verified (unlocked). Calls that
// meet an account service that is still starting wait for it and try again (up to about ten
// seconds). Static and stateless; callable from any thread.
//
//   std::vector<int> ids;
//   if (PushAccountHelper::GetForegroundOsAccounts(ids).Succeed() && !ids.empty()) { use(ids[0]); }
#ifndef KAVO_PUSH_PLATFORM_PUSH_ACCOUNT_HELPER_H
#define KAVO_PUSH_PLATFORM_PUSH_ACCOUNT_HELPER_H

#include <vector>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushAccountHelper {
public:
    // The platform fills `ids`; an empty list is a success.
    static PushBaseRsp QueryActiveOsAccountIds(std::vector<int>& ids);
    // One call, no waiting.
    static PushBaseRsp GetOsAccountLocalIdFromUid(int uid, int& localId);
    // Appends each foreground account's id after what `localIds` already holds.
    static PushBaseRsp GetForegroundOsAccounts(std::vector<int>& localIds);
    // When the foreground account cannot be determined the device counts as verified:
    // `isVerified` is true and the result carries error -1.
    static PushBaseRsp IsOsAccountVerified(bool& isVerified);
    static PushBaseRsp GetForegroundOsAccountLocalId(int& localId);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_PLATFORM_PUSH_ACCOUNT_HELPER_H
