#include "tests/support/test_support.h"

#include <cstdlib>

#include "kavo/push/event/teldric_helper.h"

namespace KavoTest {

ReportRecorder::ReportRecorder()
{
    Kavo::Push::TeldricHelper::SetReportException(
        [this](Kavo::Push::PushInnerError const& inner, std::string const& desc) {
            std::lock_guard<std::mutex> lock(mutex_);
            reports_.emplace_back(static_cast<int>(inner), desc);
        });
}

ReportRecorder::~ReportRecorder()
{
    Kavo::Push::TeldricHelper::SetReportException(nullptr);
}

ReportRecorder::Reported ReportRecorder::Reports() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return reports_;
}

std::vector<std::string> LogLines(const Kavo::LogCapture& cap, Kavo::LogLevel from)
{
    std::vector<std::string> out;
    for (const auto& line : cap.Lines()) {
        if (line.level >= from) {
            out.push_back("???DIWEF"[line.level] + (" " + line.text));
        }
    }
    return out;
}

ScopedEnv::ScopedEnv(std::string name, const char* value) : name_(std::move(name))
{
    if (const char* old = std::getenv(name_.c_str())) {
        hadValue_ = true;
        oldValue_ = old;
    }
    if (value == nullptr) {
        unsetenv(name_.c_str());
    } else {
        setenv(name_.c_str(), value, 1);
    }
}

ScopedEnv::~ScopedEnv()
{
    if (hadValue_) {
        setenv(name_.c_str(), oldValue_.c_str(), 1);
    } else {
        unsetenv(name_.c_str());
    }
}

}  // namespace KavoTest
