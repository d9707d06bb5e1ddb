// Privacy-aware printf formatting of the platform log. Internal to the host library.
#ifndef KAVO_HOST_LOG_INTERNAL_LOG_FORMAT_H
#define KAVO_HOST_LOG_INTERNAL_LOG_FORMAT_H

#include <cstdarg>
#include <string>

namespace Kavo::internal {

std::string FormatPrivacy(const char* fmt, va_list args, bool showPrivate);

}  // namespace Kavo::internal

#endif  // KAVO_HOST_LOG_INTERNAL_LOG_FORMAT_H
