// The readiness registry and the task runner: when a failure is returned at once, when it waits
// for the service and retries once, which codes it sets and which lines it logs at which level.
#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/common/system_ability_status_service.h"

namespace {

using namespace Kavo::Push;
using Sas = SystemAbilityStatusService;
using Clock = std::chrono::steady_clock;
using LogEntry = std::pair<Kavo::LogLevel, std::string>;

constexpr int ANCHOR = 65728;
constexpr int BUNDLE = 401;
constexpr int SPECIAL = 1301;
constexpr int POLL_MS = 5;
constexpr int INNER_UNSET = INT_MIN;

class SystemAbilityStatusServiceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ClearRegistry();
        Sas::SetPollIntervalForTesting(POLL_MS);
    }
    void TearDown() override
    {
        ClearRegistry();
        Sas::SetPollIntervalForTesting(0);
    }
    static void ClearRegistry()
    {
        std::lock_guard<std::recursive_mutex> lock(Sas::mutex);
        Sas::saStatuss.clear();
    }
    static void Fill(const std::vector<std::pair<int, Sas::Status>>& entries)
    {
        for (const auto& [id, status] : entries) {
            Sas::SetStatus(id, status);
        }
    }
    static std::vector<LogEntry> Entries(const Kavo::LogCapture& capture)
    {
        std::vector<LogEntry> entries;
        for (const auto& line : capture.Lines()) {
            entries.emplace_back(line.level, line.text);
        }
        return entries;
    }
};

TEST_F(SystemAbilityStatusServiceTest, RegistryAnswersOnlyOnceTheAnchorIsPresent)
{
    struct Case {
        const char* name;
        std::vector<std::pair<int, Sas::Status>> registry;
        int abilityId;
        Sas::Status status;
    };
    const Case cases[] = {
        {"empty registry is unknown", {}, BUNDLE, Sas::UNKNOWN},
        {"entries without the anchor are ignored", {{BUNDLE, Sas::STARTED}}, BUNDLE, Sas::UNKNOWN},
        {"anchor makes a missing id stopped", {{ANCHOR, Sas::STARTED}}, BUNDLE, Sas::STOPPED},
        {"anchor reported stopped still activates", {{ANCHOR, Sas::STOPPED}, {BUNDLE, Sas::STARTED}}, BUNDLE,
         Sas::STARTED},
        {"stored stopped", {{ANCHOR, Sas::STARTED}, {BUNDLE, Sas::STOPPED}}, BUNDLE, Sas::STOPPED},
        {"stored unknown is answered as it is", {{ANCHOR, Sas::STARTED}, {BUNDLE, Sas::UNKNOWN}}, BUNDLE,
         Sas::UNKNOWN},
        {"anchor asks about itself", {{ANCHOR, Sas::STARTED}}, ANCHOR, Sas::STARTED},
        {"later report overwrites", {{ANCHOR, Sas::STARTED}, {BUNDLE, Sas::STOPPED}, {BUNDLE, Sas::STARTED}}, BUNDLE,
         Sas::STARTED},
    };
    for (const auto& c : cases) {
        ClearRegistry();
        Fill(c.registry);
        EXPECT_EQ(Sas::GetStatus(c.abilityId), c.status) << c.name;
    }
}

struct TaskCase {
    const char* name;
    std::vector<std::pair<int, Sas::Status>> registry;
    int abilityId;
    std::vector<PushBaseRsp> attempts;  // what each call of the task returns
    // >= 0: another thread reports STARTED this long after the first call; long enough for the
    // runner to have read the registry as stopped, short enough to land within the wait.
    int reportStartedAfterMs;
    int calls;
    int err;
    int inner;
    std::vector<LogEntry> log;
    int minPolls;  // the wait lasted at least this many polls
};

const std::vector<TaskCase>& TaskCases()
{
    const PushBaseRsp fail(PUSH_ERR_SYSTEM_INTERNAL, std::string("query failed"));
    const PushBaseRsp failWithInner(PUSH_ERR_SYSTEM_INTERNAL, 100000016, std::string("query failed"));
    const PushBaseRsp badParam(PUSH_ERR_INVALID_PARAM, std::string("bad"));
    const PushBaseRsp waitCode(PUSH_ERR_SYSTEM_INTERNAL, INNER_ERR_SA_WAIT_AND_RETRY, std::string("busy"));
    const PushBaseRsp ok;
    using L = LogEntry;
    static const std::vector<TaskCase> cases = {
        {"first success returns at once", {{ANCHOR, Sas::STARTED}}, BUNDLE, {ok}, -1, 1, 0, INNER_UNSET,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:401"},
          L{Kavo::LOG_DEBUG, "End do task for ability:401 firstTime succeed"}},
         0},
        {"no anchor returns the failure unchanged", {{BUNDLE, Sas::STOPPED}}, BUNDLE, {failWithInner, ok}, -1, 1,
         1000900001, 100000016,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:401"},
          L{Kavo::LOG_DEBUG, "End do task for ability:401 failed"}},
         0},
        {"started service marks the failure as its own", {{ANCHOR, Sas::STARTED}, {BUNDLE, Sas::STARTED}}, BUNDLE,
         {badParam, ok}, -1, 1, 401, 100000143,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:401"}, L{Kavo::LOG_ERROR, "Task for ability:401 is started"}},
         0},
        {"missing service waits ten polls then stops", {{ANCHOR, Sas::STARTED}}, BUNDLE, {badParam, ok}, -1, 1,
         1000900001, 100000142,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:401"}, L{Kavo::LOG_ERROR, "Task for ability:401 stopped"}},
         10},
        {"stopped service reported started during the wait is retried",
         {{ANCHOR, Sas::STARTED}, {BUNDLE, Sas::STOPPED}}, BUNDLE, {fail, ok}, 12, 2, 0, INNER_UNSET,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:401"},
          L{Kavo::LOG_WARN, "Begin do task for ability:401 again"}},
         1},
        {"second failure after the wait is marked", {{ANCHOR, Sas::STARTED}, {BUNDLE, Sas::STOPPED}}, BUNDLE,
         {fail, failWithInner, ok}, 10, 2, 1000900001, 100000143,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:401"},
          L{Kavo::LOG_WARN, "Begin do task for ability:401 again"}, L{Kavo::LOG_ERROR, "Sa interface invoke fail"}},
         1},
        {"ability 1301 with its retry code waits even without the anchor", {}, SPECIAL, {waitCode, ok}, -1, 2, 0,
         INNER_UNSET,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:1301"},
          L{Kavo::LOG_WARN, "Begin do task for ability:1301 again"}},
         10},
        {"ability 1301 with its retry code stays stopped", {{ANCHOR, Sas::STARTED}}, SPECIAL, {waitCode, ok}, -1, 1,
         1000900001, 100000142,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:1301"}, L{Kavo::LOG_ERROR, "Task for ability:1301 stopped"}},
         10},
        {"ability 1301 with its retry code waits although started",
         {{ANCHOR, Sas::STARTED}, {SPECIAL, Sas::STARTED}}, SPECIAL, {waitCode, waitCode}, -1, 2, 1000900001,
         100000143,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:1301"},
          L{Kavo::LOG_WARN, "Begin do task for ability:1301 again"}, L{Kavo::LOG_ERROR, "Sa interface invoke fail"}},
         1},
        {"ability 1301 with another code is not waited for", {}, SPECIAL, {failWithInner, ok}, -1, 1, 1000900001,
         100000016,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:1301"},
          L{Kavo::LOG_DEBUG, "End do task for ability:1301 failed"}},
         0},
        {"the retry code of another ability is not waited for", {}, BUNDLE, {waitCode, ok}, -1, 1, 1000900001,
         100000155,
         {L{Kavo::LOG_DEBUG, "Begin do task for ability:401"},
          L{Kavo::LOG_DEBUG, "End do task for ability:401 failed"}},
         0},
    };
    return cases;
}

TEST_F(SystemAbilityStatusServiceTest, TaskRunnerWaitsOnlyForStoppedServices)
{
    for (const auto& c : TaskCases()) {
        ClearRegistry();
        Fill(c.registry);
        Kavo::LogCapture capture;
        std::thread reporter;
        size_t calls = 0;
        std::vector<size_t> linesBeforeCall;
        auto task = [&]() {
            if (calls == 0 && c.reportStartedAfterMs >= 0) {
                int id = c.abilityId;
                int delay = c.reportStartedAfterMs;
                reporter = std::thread([id, delay] {
                    std::this_thread::sleep_for(std::chrono::milliseconds(delay));
                    Sas::SetStatus(id, Sas::STARTED);
                });
            }
            // "Begin do task" precedes the first attempt, "... again" the second.
            linesBeforeCall.push_back(capture.Lines().size());
            return c.attempts[calls++];
        };
        auto start = Clock::now();
        PushBaseRsp rsp = Sas::DoSystemAbilityTaskWithRetry(c.abilityId, task);
        auto waited = Clock::now() - start;
        if (reporter.joinable()) {
            reporter.join();
        }
        EXPECT_EQ(static_cast<int>(calls), c.calls) << c.name;
        EXPECT_EQ(rsp.GetErrAsInt32(), c.err) << c.name;
        EXPECT_EQ(rsp.GetInnerErr(), c.inner) << c.name;
        EXPECT_EQ(Entries(capture), c.log) << c.name;
        for (size_t i = 0; i < linesBeforeCall.size(); ++i) {
            EXPECT_EQ(linesBeforeCall[i], i + 1) << c.name << ", attempt " << i + 1;
        }
        EXPECT_GE(waited, std::chrono::milliseconds(c.minPolls * POLL_MS)) << c.name;
    }
}

TEST_F(SystemAbilityStatusServiceTest, WaitEndsAtTheFirstPollThatSeesTheServiceStarted)
{
    // Long polls, so ten of them would be obvious; the report comes within the first one.
    Sas::SetPollIntervalForTesting(60);
    Fill({{ANCHOR, Sas::STARTED}, {BUNDLE, Sas::STOPPED}});
    int calls = 0;
    std::thread reporter;
    auto start = Clock::now();
    PushBaseRsp rsp = Sas::DoSystemAbilityTaskWithRetry(BUNDLE, [&]() {
        if (calls++ == 0) {
            reporter = std::thread([] {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                Sas::SetStatus(BUNDLE, Sas::STARTED);
            });
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL);
        }
        return PushBaseRsp();
    });
    auto waited = Clock::now() - start;
    reporter.join();
    EXPECT_TRUE(rsp.Succeed());
    EXPECT_EQ(calls, 2);
    EXPECT_GE(waited, std::chrono::milliseconds(60));
    EXPECT_LT(waited, std::chrono::milliseconds(5 * 60));
}

TEST_F(SystemAbilityStatusServiceTest, StoppedResultKeepsDescriptionAndSubStatus)
{
    Fill({{ANCHOR, Sas::STARTED}});
    PushBaseRsp rsp = Sas::DoSystemAbilityTaskWithRetry(
        BUNDLE, [] { return PushBaseRsp(6, PUSH_ERR_INVALID_PARAM, "GetBundleInfo %s", "x"); });
    EXPECT_EQ(rsp.GetInfo(), "GetBundleInfo x: error(1000900001), innerCode(100000142)");
    EXPECT_EQ(rsp.GetSubStatusCode(), 6);
}

TEST_F(SystemAbilityStatusServiceTest, AnEmptyTaskThrows)
{
    EXPECT_THROW(Sas::DoSystemAbilityTaskWithRetry(BUNDLE, nullptr), std::bad_function_call);
}

}  // namespace
