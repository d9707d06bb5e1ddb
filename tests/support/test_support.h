// Helpers shared by the test suites.
#ifndef KAVO_TESTS_SUPPORT_TEST_SUPPORT_H
#define KAVO_TESTS_SUPPORT_TEST_SUPPORT_H

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/common/push_error.h"

namespace KavoTest {

// Installs an analytics exception hook for its lifetime and records every report.
class ReportRecorder {
public:
    using Reported = std::vector<std::pair<int, std::string>>;
    ReportRecorder();
    ~ReportRecorder();
    Reported Reports() const;

private:
    mutable std::mutex mutex_;
    Reported reports_;
};

// The lines of `cap` from level `from` up, each as "<level letter> <text>".
std::vector<std::string> LogLines(const Kavo::LogCapture& cap, Kavo::LogLevel from = Kavo::LEVEL_DEBUG);

// Sets an environment variable for the scope, restoring the previous value afterwards.
class ScopedEnv {
public:
    ScopedEnv(std::string name, const char* value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string name_;
    bool hadValue_ = false;
    std::string oldValue_;
};

}  // namespace KavoTest

#endif  // KAVO_TESTS_SUPPORT_TEST_SUPPORT_H
