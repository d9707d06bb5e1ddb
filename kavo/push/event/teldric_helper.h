// TeldricHelper: the switchboard through which the library reports to the push service's
// analytics. The service installs the two hooks once at start-up (no locking); until then
// every report is dropped. Reports run on the caller's thread.
//
//   TeldricHelper::SetReportException([](PushInnerError const& e, std::string const& d) { ... });
//   TeldricHelper::AsyncReportCommonException(INNER_ERR_DATA_CONVERT_FAILED, "Read %{public}s Error", "x");
#ifndef KAVO_PUSH_EVENT_TELDRIC_HELPER_H
#define KAVO_PUSH_EVENT_TELDRIC_HELPER_H

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <string>

#include "kavo/host/log/log.h"
#include "kavo/push/common/push_error.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

// Components and API statuses belong to the push service; the library passes them through.
enum ComponentCode : int32_t {
    COMPONENT_TIMER = 18,
    COMPONENT_ACCOUNT = 35,
};

enum ApiStatusCode : int32_t {
    API_STATUS_SUCCESS = 0,
    API_STATUS_FAILURE = 1,
};

class KAVO_PUSH_EXPORT TeldricHelper {
public:
    using AddEventMethod = std::function<void(ComponentCode, std::string const&, ApiStatusCode, std::string const&)>;
    using ReportExceptionMethod = std::function<void(PushInnerError const&, std::string const&)>;

    static void RegisterAddEventMethod(AddEventMethod const& method);
    static void AddEvent(ComponentCode component, std::string const& apiName, ApiStatusCode status,
                         std::string const& detail);
    static void SetReportException(ReportExceptionMethod report);
    // Takes a log format: "{public}" markers are dropped, and a format with "{private}" is never
    // reported. Nothing is formatted while no hook is installed.
    static void AsyncReportCommonException(PushInnerError const& inner, char const* fmt, ...) KAVO_LOG_FORMAT(2, 3);
    static std::string BuildLogReportDesc(char const* fmt, ...) KAVO_LOG_FORMAT(1, 2);
    static void FormatLogStr(std::string& text, std::string const& marker);

private:
    static std::string BuildLogReportDescV(char const* fmt, va_list args);

    // Detached threads may report while the process exits, so the hooks are never destroyed.
    static AddEventMethod& AddEventHook();
    static ReportExceptionMethod& ReportExceptionHook();
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_EVENT_TELDRIC_HELPER_H
