// The library's most repeated failure shape: log a line at error level, then report the same
// format to analytics with an inner code. The text stays whole at the call site:
//
//   PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "RemoteWantAgent::ReadFromParcel: Read AbilityName Error");
#ifndef KAVO_PUSH_EVENT_REPORT_LOG_H
#define KAVO_PUSH_EVENT_REPORT_LOG_H

#include "kavo/push/common/push_log.h"
#include "kavo/push/event/teldric_helper.h"

// Each argument is evaluated once, before the line is logged; the same values are then reported.
#define PUSH_LOGE_AND_REPORT(inner, fmt, ...)                                                                          \
    [&](auto&&... pushReportArgs) {                                                                                    \
        PUSH_LOGE(fmt, pushReportArgs...);                                                                             \
        ::Kavo::Push::TeldricHelper::AsyncReportCommonException((inner), fmt, pushReportArgs...);                      \
    }(__VA_ARGS__)

#endif  // KAVO_PUSH_EVENT_REPORT_LOG_H
