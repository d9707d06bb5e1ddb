// The platform log: one print operation with privacy markers, and a capture for tests.
//
//   Kavo::LogPrint(Kavo::LOG_SOURCE_SERVICE, Kavo::LEVEL_ERROR, 0xD005300, "push", "id %{public}d", 7);
//
// A conversion written "%{public}..." prints its argument; a plain or "%{private}..." one prints
// "<private>" unless KAVO_LOG_PRIVATE=show. Lines reach standard error as
// "LEVEL domain/tag: message" when their level passes KAVO_LOG_LEVEL (debug, info, warn, error;
// default warn). Every active LogCapture records every line, whatever the filter.
// All functions are thread-safe.
#ifndef KAVO_HOST_LOG_LOG_H
#define KAVO_HOST_LOG_LOG_H

#include <cstdarg>
#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/host_export.h"

// printf checking of log formats. A privacy marker ("%{public}s") is no printf conversion, so the
// check is on only in the format-check build (scripts/check-log-formats.sh), which compiles a
// copy of the sources with the markers stripped from their text.
#ifdef KAVO_LOG_FORMAT_CHECK
#define KAVO_LOG_FORMAT(formatIndex, firstArgIndex) __attribute__((format(printf, formatIndex, firstArgIndex)))
#else
#define KAVO_LOG_FORMAT(formatIndex, firstArgIndex)
#endif

namespace Kavo {

// The push service logs from one source, the system-service log (type 3).
enum LogSource : int { LOG_SOURCE_SERVICE = 3 };
enum LogLevel : int { LEVEL_DEBUG = 3, LEVEL_INFO = 4, LEVEL_WARN = 5, LEVEL_ERROR = 6, LEVEL_FATAL = 7 };

KAVO_HOST_EXPORT int LogPrint(LogSource type, LogLevel level, unsigned int domain, const char* tag, const char* fmt,
                              ...) KAVO_LOG_FORMAT(5, 6);
KAVO_HOST_EXPORT int LogPrintV(LogSource type, LogLevel level, unsigned int domain, const char* tag, const char* fmt,
                               va_list args);

// Formats `fmt` the way the log prints it. Every argument is consumed by its own conversion
// (flags, widths, precisions and length modifiers included) whether it is shown or masked.
KAVO_HOST_EXPORT std::string FormatLogMessage(const char* fmt, va_list args, bool showPrivate);

// "DEBUG", "INFO", "WARN", "ERROR", "FATAL", or "LEVEL<n>" for anything else.
KAVO_HOST_EXPORT std::string LogLevelName(LogLevel level);

struct LogLine {
    LogSource type;
    LogLevel level;
    unsigned int domain;
    std::string tag;
    std::string text;  // as printed under the KAVO_LOG_PRIVATE setting of the moment
};

// Records every line printed while it lives. Captures may nest and may live on any thread;
// each sees every line of every thread.
class KAVO_HOST_EXPORT LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> Lines() const;
    std::vector<std::string> Texts() const;  // the texts alone, in order
    void Clear();

    void Record(const LogLine& line);  // called by the log itself

private:
    struct State;
    State* state_;
};

}  // namespace Kavo

#endif  // KAVO_HOST_LOG_LOG_H
