// Bounds-checked memory and formatting functions of the platform's secure library.
// All functions are stateless and may be called from any thread.
#ifndef KAVO_HOST_SECURE_BOUNDED_MEMORY_H
#define KAVO_HOST_SECURE_BOUNDED_MEMORY_H

#include <cstdarg>
#include <cstddef>

#include "kavo/host/host_export.h"

namespace Kavo {

// Largest destination the checked functions accept; anything larger is taken as a bad size.
constexpr size_t MAX_CHECKED_LENGTH = 0x7fffffffUL;

constexpr int CHECKED_OK = 0;
constexpr int CHECKED_INVALID_ARGUMENT = 22;
constexpr int CHECKED_OUT_OF_RANGE = 34;

// Fills `count` bytes of `dest` with `c`. Returns CHECKED_OK, or non-zero when `dest` is null,
// `destMax` is 0 or too large, or `count` exceeds `destMax` (then `destMax` bytes are filled).
// The fill is never removed by the optimiser, so it can wipe secrets.
KAVO_HOST_EXPORT int memset_s(void* dest, size_t destMax, int c, size_t count);

// Formats at most `count` characters (and a terminating zero) into `dest` of `destMax` bytes.
// Returns the number of characters written, or -1 on a bad argument, an encoding error or
// truncation; on -1 `dest` holds the truncated text (empty on a bad argument).
KAVO_HOST_EXPORT int vsnprintf_s(char* dest, size_t destMax, size_t count, const char* format, va_list args);
KAVO_HOST_EXPORT int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

}  // namespace Kavo

#endif  // KAVO_HOST_SECURE_BOUNDED_MEMORY_H
