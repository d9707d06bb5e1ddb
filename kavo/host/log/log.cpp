#include "kavo/host/log/log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "kavo/host/log/internal/log_format.h"

namespace Kavo {

namespace {

// Never destroyed: detached threads may still log while the process exits.
std::mutex& CaptureMutex()
{
    static std::mutex& mutex = *new std::mutex;
    return mutex;
}

std::vector<LogCapture*>& ActiveCaptures()
{
    static std::vector<LogCapture*>& captures = *new std::vector<LogCapture*>;
    return captures;
}

bool ShowPrivate()
{
    const char* value = std::getenv("KAVO_LOG_PRIVATE");
    return value != nullptr && std::strcmp(value, "show") == 0;
}

LogLevel MinimumStderrLevel()
{
    const char* value = std::getenv("KAVO_LOG_LEVEL");
    if (value == nullptr) {
        return LEVEL_WARN;
    }
    static const struct {
        const char* name;
        LogLevel level;
    } names[] = {{"debug", LEVEL_DEBUG},
                 {"info", LEVEL_INFO},
                 {"warn", LEVEL_WARN},
                 {"error", LEVEL_ERROR},
                 {"fatal", LEVEL_FATAL}};
    for (const auto& entry : names) {
        if (std::strcmp(value, entry.name) == 0) {
            return entry.level;
        }
    }
    return LEVEL_WARN;
}

}  // namespace

std::string LogLevelName(LogLevel level)
{
    switch (level) {
        case LEVEL_DEBUG:
            return "DEBUG";
        case LEVEL_INFO:
            return "INFO";
        case LEVEL_WARN:
            return "WARN";
        case LEVEL_ERROR:
            return "ERROR";
        case LEVEL_FATAL:
            return "FATAL";
    }
    return "LEVEL" + std::to_string(static_cast<int>(level));
}

std::string FormatLogMessage(const char* fmt, va_list args, bool showPrivate)
{
    return internal::FormatPrivacy(fmt, args, showPrivate);
}

int LogPrintV(LogSource type, LogLevel level, unsigned int domain, const char* tag, const char* fmt, va_list args)
{
    if (fmt == nullptr) {
        return -1;
    }
    LogLine line{type, level, domain, tag == nullptr ? "" : tag, FormatLogMessage(fmt, args, ShowPrivate())};
    {
        std::lock_guard<std::mutex> lock(CaptureMutex());
        for (LogCapture* capture : ActiveCaptures()) {
            capture->Record(line);
        }
    }
    if (level >= MinimumStderrLevel()) {
        char head[64];
        std::snprintf(head, sizeof(head), "%s %X/", LogLevelName(level).c_str(), domain);
        std::string out = head + line.tag + ": " + line.text + "\n";
        std::fwrite(out.data(), 1, out.size(), stderr);
    }
    return static_cast<int>(line.text.size());
}

int LogPrint(LogSource type, LogLevel level, unsigned int domain, const char* tag, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    int ret = LogPrintV(type, level, domain, tag, fmt, args);
    va_end(args);
    return ret;
}

struct LogCapture::State {
    mutable std::mutex mutex;
    std::vector<LogLine> lines;
};

LogCapture::LogCapture() : state_(new State)
{
    std::lock_guard<std::mutex> lock(CaptureMutex());
    ActiveCaptures().push_back(this);
}

LogCapture::~LogCapture()
{
    {
        std::lock_guard<std::mutex> lock(CaptureMutex());
        auto& captures = ActiveCaptures();
        captures.erase(std::remove(captures.begin(), captures.end(), this), captures.end());
    }
    delete state_;
}

std::vector<LogLine> LogCapture::Lines() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    return state_->lines;
}

std::vector<std::string> LogCapture::Texts() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    std::vector<std::string> texts;
    texts.reserve(state_->lines.size());
    for (const auto& line : state_->lines) {
        texts.push_back(line.text);
    }
    return texts;
}

void LogCapture::Clear()
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->lines.clear();
}

void LogCapture::Record(const LogLine& line)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->lines.push_back(line);
}

}  // namespace Kavo
