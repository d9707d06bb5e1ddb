// PushDistributeAccountHelper: the distributed (cloud) account of the device owner. One call
// to the account service, no waiting. Static and stateless; callable from any thread.
#ifndef KAVO_PUSH_PLATFORM_PUSH_DISTRIBUTE_ACCOUNT_HELPER_H
#define KAVO_PUSH_PLATFORM_PUSH_DISTRIBUTE_ACCOUNT_HELPER_H

#include <string>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushDistributeAccountHelper {
public:
    // Fails with "Os account id not login", `distributedId` untouched, while nobody is logged in.
    static PushBaseRsp GetOsDistributedId(std::string& distributedId);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_PLATFORM_PUSH_DISTRIBUTE_ACCOUNT_HELPER_H
