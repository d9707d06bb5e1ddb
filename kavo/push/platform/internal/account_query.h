// The retried query of the account service: one platform call run through the retry wrapper
// for service 200, with the operation's own texts. Used by every retried account operation.
// Stateless; callable from any thread.
#ifndef KAVO_PUSH_PLATFORM_INTERNAL_ACCOUNT_QUERY_H
#define KAVO_PUSH_PLATFORM_INTERNAL_ACCOUNT_QUERY_H

#include <cstdint>
#include <functional>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/platform/internal/log_format.h"

namespace Kavo::Push::internal {

// The texts of one operation, set one per line at its call site. Each code-and-id format is
// given the platform code, then the current value of the query's local id (0 when it has none);
// a null text means the operation has no such line.
struct AccountQueryTexts {
    CodeAndIdFormat taskFailLog{nullptr};  // in the task, on a non-zero code
    const char* eventApiName = nullptr;    // analytics event in the task, on a non-zero code
    const char* notStartedText = nullptr;  // log and description when the service cannot be reached
    InfoFormat retryFailLog{nullptr};      // the retry wrapper failed
    CodeAndIdFormat failLog{nullptr};      // the platform answered a non-zero code
    CodeAndIdFormat failDesc{nullptr};     // the description of that failure
};

// Runs `platformCall` (which returns the platform code) until the account service answers,
// then maps the code. `localId` is the id shown in the texts; it may be null.
PushBaseRsp RunAccountQuery(const AccountQueryTexts& texts, const std::function<int32_t()>& platformCall,
                            const int* localId = nullptr);

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_PLATFORM_INTERNAL_ACCOUNT_QUERY_H
