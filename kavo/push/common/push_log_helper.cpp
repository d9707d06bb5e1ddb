#include "kavo/push/common/push_log_helper.h"

#include <memory>

#include "kavo/host/secure/bounded_memory.h"

namespace Kavo::Push {

namespace {

constexpr size_t MAX_LOG_DETAIL_LENGTH = 4096;

}  // namespace

std::string PushLogHelper::SerializeLogDetail(char const* const& fmt, va_list args)
{
    constexpr size_t bufferSize = MAX_LOG_DETAIL_LENGTH + 1;
    auto buffer = std::make_unique<char[]>(bufferSize);
    if (Kavo::memset_s(buffer.get(), bufferSize, 0, bufferSize) != Kavo::CHECKED_OK) {
        return std::string();
    }
    va_list copy;
    va_copy(copy, args);
    int ret = Kavo::vsnprintf_s(buffer.get(), bufferSize, MAX_LOG_DETAIL_LENGTH, fmt, copy);
    va_end(copy);
    if (ret == -1) {
        return std::string();
    }
    return std::string(buffer.get());
}

}  // namespace Kavo::Push
