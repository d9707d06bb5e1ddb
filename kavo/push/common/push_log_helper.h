// printf-style formatting into a std::string of at most 4096 characters.
// Stateless; may be called from any thread.
#ifndef KAVO_PUSH_COMMON_PUSH_LOG_HELPER_H
#define KAVO_PUSH_COMMON_PUSH_LOG_HELPER_H

#include <cstdarg>
#include <string>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushLogHelper {
public:
    // Returns the formatted text, or "" when formatting fails or the text would be longer
    // than 4096 characters (it is dropped, never cut). Privacy markers are not understood.
    static std::string SerializeLogDetail(char const* const& fmt, va_list args);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_COMMON_PUSH_LOG_HELPER_H
