// BaseUtil: the blind retry loop around one platform call, and small string helpers whose
// exact results other components rely on. All functions are stateless and thread-safe.
//
//   PushBaseRsp rsp = BaseUtil::DoSystemAbilityApiCallWithRetry(
//       [&] { return QueryOnce(out); }, 3, 100);  // at most 4 calls, 100 ms apart
#ifndef KAVO_PUSH_COMMON_BASE_UTIL_H
#define KAVO_PUSH_COMMON_BASE_UTIL_H

#include <functional>
#include <string>
#include <vector>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT BaseUtil {
public:
    // Runs `call` until it succeeds, at most retryTimes + 1 times, sleeping intervalMs between
    // attempts; returns the last result. An empty `call` throws std::bad_function_call.
    static PushBaseRsp DoSystemAbilityApiCallWithRetry(std::function<PushBaseRsp()> const& call, int retryTimes,
                                                       int intervalMs);

    // Splits on an ECMAScript regular expression (escape special characters); a pattern with
    // no special character is searched as plain text, with the same tokens. An empty str gives
    // no token, a trailing separator no trailing empty token. A bad pattern throws
    // std::regex_error.
    static std::vector<std::string> StringSplit(std::string const& str, std::string const& pattern);
    // The 31-multiplier string hash, bytes taken as signed chars.
    static int HashCode(std::string const& str);
    // Joins the items with "#" between them.
    static std::string vectorToString(std::vector<std::string> const& items);
    // Accepts only an optional '-' and decimal digits within int range; logs and returns false,
    // leaving value untouched, otherwise. A digit string past the 64-bit range throws
    // std::out_of_range.
    static bool SafeStoi(std::string const& str, int& value);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_COMMON_BASE_UTIL_H
