// The retried query of the account service: one platform call run through the retry wrapper
// for service 200, with the operation's own texts. Used by every retried account operation.
// Stateless; callable from any thread.
#ifndef KAVO_PUSH_PLATFORM_INTERNAL_ACCOUNT_QUERY_H
#define KAVO_PUSH_PLATFORM_INTERNAL_ACCOUNT_QUERY_H

#include <cstdint>
#include <functional>

#include "kavo/push/common/push_base_rsp.h"

namespace Kavo::Push::internal {

// The texts of one operation. Formats marked (code, id) take the platform code and the current
// value of the query's local id; a null text means the operation has no such line.
struct AccountQueryTexts {
    const char* taskFailLog;     // in the task, on a non-zero code (code, id)
    const char* eventApiName;    // analytics event on a non-zero code
    const char* notStartedText;  // log and description when the service cannot be reached
    const char* retryFailLog;    // the retry wrapper failed: its GetInfo()
    const char* failLog;         // the platform answered a non-zero code (code, id)
    const char* failDesc;        // the description of that failure (code, id)
};

// Runs `platformCall` (which returns the platform code) until the account service answers,
// then maps the code. `localId` is the id shown in the texts; it may be null.
PushBaseRsp RunAccountQuery(const AccountQueryTexts& texts, const std::function<int32_t()>& platformCall,
                            const int* localId = nullptr);

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_PLATFORM_INTERNAL_ACCOUNT_QUERY_H
