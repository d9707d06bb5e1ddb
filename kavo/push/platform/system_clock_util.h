// SystemClockUtil: the boot clock that timer deadlines are written in. Stateless; callable
// from any thread.
#ifndef KAVO_PUSH_PLATFORM_SYSTEM_CLOCK_UTIL_H
#define KAVO_PUSH_PLATFORM_SYSTEM_CLOCK_UTIL_H

#include <cstdint>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT SystemClockUtil {
public:
    // Milliseconds since boot; -1 (and an analytics event) when the time service answers 0 or less.
    static int64_t GetBootTimeMillis();
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_PLATFORM_SYSTEM_CLOCK_UTIL_H
