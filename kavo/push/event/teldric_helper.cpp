#include "kavo/push/event/teldric_helper.h"

#include <cstdarg>

#include "kavo/push/common/push_log_helper.h"

namespace Kavo::Push {

TeldricHelper::AddEventMethod TeldricHelper::addEventMethod_;
TeldricHelper::ReportExceptionMethod TeldricHelper::asyncReportException_;
const std::string TeldricHelper::PUBLIC_MARKER = "{public}";
const std::string TeldricHelper::PRIVATE_MARKER = "{private}";

void TeldricHelper::RegisterAddEventMethod(AddEventMethod const& method)
{
    addEventMethod_ = method;
}

void TeldricHelper::AddEvent(ComponentCode component, std::string const& apiName, ApiStatusCode status,
                             std::string const& detail)
{
    if (addEventMethod_) {
        addEventMethod_(component, apiName, status, detail);
    }
}

void TeldricHelper::SetReportException(ReportExceptionMethod report)
{
    asyncReportException_ = std::move(report);
}

void TeldricHelper::AsyncReportCommonException(PushInnerError const& inner, char const* fmt, ...)
{
    if (!asyncReportException_) {
        return;
    }
    va_list args;
    va_start(args, fmt);
    std::string desc = BuildLogReportDescV(fmt, args);
    va_end(args);
    if (desc.empty()) {
        return;
    }
    asyncReportException_(inner, desc);
}

std::string TeldricHelper::BuildLogReportDesc(char const* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    std::string desc = BuildLogReportDescV(fmt, args);
    va_end(args);
    return desc;
}

std::string TeldricHelper::BuildLogReportDescV(char const* fmt, va_list args)
{
    if (fmt == nullptr) {
        return std::string();
    }
    std::string format(fmt);
    // A message that carries private data never leaves the device.
    if (format.find(PRIVATE_MARKER) != std::string::npos) {
        return std::string();
    }
    FormatLogStr(format, PUBLIC_MARKER);
    const char* plain = format.c_str();
    return PushLogHelper::SerializeLogDetail(plain, args);
}

void TeldricHelper::FormatLogStr(std::string& text, std::string const& marker)
{
    if (marker.empty()) {
        return;
    }
    for (size_t pos = text.find(marker); pos != std::string::npos; pos = text.find(marker)) {
        text.erase(pos, marker.size());
    }
}

}  // namespace Kavo::Push
