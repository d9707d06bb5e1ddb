// The library's log statements. Every line goes to the platform log with type 3, domain
// 0xD005300 and tag "push"; the format string is the whole message and marks each argument
// that may be shown with "%{public}".
//
//   PUSH_LOGE("Get bundle mgr fail: %{public}s", rsp.GetInfo().c_str());
#ifndef KAVO_PUSH_COMMON_PUSH_LOG_H
#define KAVO_PUSH_COMMON_PUSH_LOG_H

#include <string>

#include "kavo/host/log/log.h"

namespace Kavo::Push {

constexpr unsigned int PUSH_LOG_DOMAIN = 0xD005300;
// One process-wide tag, initialised once whichever source file logs first. Never destroyed:
// detached threads may still log while the process exits.
inline const std::string& PUSH_LOG_TAG = *new std::string("push");

}  // namespace Kavo::Push

#define PUSH_LOG_PRINT(level, fmt, ...)                                                                                \
    ((void)::Kavo::LogPrint(::Kavo::LOG_SOURCE_SERVICE, (level), ::Kavo::Push::PUSH_LOG_DOMAIN,                        \
                            ::Kavo::Push::PUSH_LOG_TAG.c_str(), fmt, ##__VA_ARGS__))

#define PUSH_LOGD(fmt, ...) PUSH_LOG_PRINT(::Kavo::LEVEL_DEBUG, fmt, ##__VA_ARGS__)
#define PUSH_LOGI(fmt, ...) PUSH_LOG_PRINT(::Kavo::LEVEL_INFO, fmt, ##__VA_ARGS__)
#define PUSH_LOGW(fmt, ...) PUSH_LOG_PRINT(::Kavo::LEVEL_WARN, fmt, ##__VA_ARGS__)
#define PUSH_LOGE(fmt, ...) PUSH_LOG_PRINT(::Kavo::LEVEL_ERROR, fmt, ##__VA_ARGS__)

#endif  // KAVO_PUSH_COMMON_PUSH_LOG_H
