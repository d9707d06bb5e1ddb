#include "tests/support/test_support.h"

#include <cstdlib>
#include <memory>
#include <mutex>

#include "kavo/push/event/teldric_helper.h"

namespace KavoTest {

struct ReportRecorder::State {
    mutable std::mutex mutex;
    std::vector<std::pair<int, std::string>> reports;
};

ReportRecorder::ReportRecorder() : state_(new State)
{
    State* state = state_;
    Kavo::Push::TeldricHelper::SetReportException(
        [state](Kavo::Push::PushInnerError const& inner, std::string const& desc) {
            std::lock_guard<std::mutex> lock(state->mutex);
            state->reports.emplace_back(static_cast<int>(inner), desc);
        });
}

ReportRecorder::~ReportRecorder()
{
    Kavo::Push::TeldricHelper::SetReportException(nullptr);
    delete state_;
}

std::vector<std::pair<int, std::string>> ReportRecorder::Reports() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    return state_->reports;
}

void ReportRecorder::Clear()
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->reports.clear();
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
