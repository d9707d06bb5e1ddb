#include "kavo/push/event/teldric_helper.h"

#include <cstdarg>

#include "kavo/push/common/push_log_helper.h"

namespace Kavo::Push {

namespace {

constexpr char PUBLIC_MARKER[] = "{public}";
constexpr char PRIVATE_MARKER[] = "{private}";

}  // namespace

TeldricHelper::AddEventMethod& TeldricHelper::AddEventHook()
{
    static AddEventMethod& hook = *new AddEventMethod;
    return hook;
}

TeldricHelper::ReportExceptionMethod& TeldricHelper::ReportExceptionHook()
{
    static ReportExceptionMethod& hook = *new ReportExceptionMethod;
    return hook;
}

void TeldricHelper::RegisterAddEventMethod(AddEventMethod const& method)
{
    AddEventHook() = method;
}

void TeldricHelper::AddEvent(ComponentCode component, std::string const& apiName, ApiStatusCode status,
                             std::string const& detail)
{
    if (const AddEventMethod& hook = AddEventHook()) {
        hook(component, apiName, status, detail);
    }
}

void TeldricHelper::SetReportException(ReportExceptionMethod report)
{
    ReportExceptionHook() = std::move(report);
}

void TeldricHelper::AsyncReportCommonException(PushInnerError const& inner, char const* fmt, ...)
{
    const ReportExceptionMethod& hook = ReportExceptionHook();
    if (!hook) {
        return;
    }
    va_list args;
    va_start(args, fmt);
    std::string desc = BuildLogReportDescV(fmt, args);
    va_end(args);
    if (desc.empty()) {
        return;
    }
    hook(inner, desc);
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
