#include "kavo/host/secure/bounded_memory.h"

#include <cstdio>
#include <cstring>

namespace Kavo {

namespace {

// A store through a volatile function pointer keeps the compiler from proving the fill dead.
void* (*const volatile g_memset)(void*, int, size_t) = std::memset;

}  // namespace

int memset_s(void* dest, size_t destMax, int c, size_t count)
{
    if (dest == nullptr || destMax == 0 || destMax > MAX_CHECKED_LENGTH) {
        return CHECKED_INVALID_ARGUMENT;
    }
    if (count > destMax) {
        g_memset(dest, c, destMax);
        return CHECKED_OUT_OF_RANGE;
    }
    g_memset(dest, c, count);
    return CHECKED_OK;
}

int vsnprintf_s(char* dest, size_t destMax, size_t count, const char* format, va_list args)
{
    if (dest == nullptr || destMax == 0 || destMax > MAX_CHECKED_LENGTH) {
        return -1;
    }
    if (format == nullptr) {
        dest[0] = '\0';
        return -1;
    }
    // At most `count` characters, and never more than the buffer holds with its terminator.
    size_t limit = count < destMax ? count + 1 : destMax;
    int written = std::vsnprintf(dest, limit, format, args);
    if (written < 0) {
        dest[0] = '\0';
        return -1;
    }
    if (static_cast<size_t>(written) >= limit) {
        return -1;
    }
    return written;
}

int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    int ret = vsnprintf_s(dest, destMax, count, format, args);
    va_end(args);
    return ret;
}

}  // namespace Kavo
