// The task runner over the readiness registry: when a failure is returned at once, when it waits
// for the service and retries once, which codes it sets and which lines it logs at which level.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/common/system_ability_status_service.h"

namespace {

using namespace Kavo::Push;
using Sas = SystemAbilityStatusService;
using Clock = std::chrono::steady_clock;

constexpr int ANCHOR = 65728;  // the ability whose presence makes the registry answer
constexpr int POLL_MS = 20;

using Reg = std::vector<std::pair<int, Sas::Status>>;
using Rsps = std::vector<PushBaseRsp>;
using Events = std::vector<std::string>;

struct TaskCase {
    const char* name;
    Reg registry;
    int abilityId;
    Rsps attempts;       // what each call of the task returns
    int startedAfterMs;  // >= 0: another thread reports the ability STARTED this long after the first call
    const char* info;    // of the result
    int polls;           // how long the wait lasts, in polls
    Events events;       // "<level letter> <log text>"; the task logs "call" each time it runs
};

TEST(SystemAbilityStatusServiceTest, TaskRunnerWaitsOnlyForStoppedServices)
{
    Sas::SetPollIntervalForTesting(POLL_MS);
    const PushBaseRsp ok;
    const PushBaseRsp bad(6, PUSH_ERR_INVALID_PARAM, "bad");
    const PushBaseRsp inner(PUSH_ERR_SYSTEM_INTERNAL, 100000016, std::string("q"));
    const PushBaseRsp wait(PUSH_ERR_SYSTEM_INTERNAL, INNER_ERR_SA_WAIT_AND_RETRY, std::string("busy"));
    const std::string call = "I call";
    const std::string begin401 = "D Begin do task for ability:401", again401 = "W Begin do task for ability:401 again";
    const std::string begin1301 = "D Begin do task for ability:1301";
    const std::string again1301 = "W Begin do task for ability:1301 again";
    const TaskCase cases[] = {
        {"first success returns at once", Reg{{ANCHOR, Sas::STARTED}}, 401, Rsps{ok}, -1, "", 0,
         Events{begin401, call, "D End do task for ability:401 firstTime succeed"}},
        {"no anchor: the failure at once", Reg{{401, Sas::STOPPED}}, 401, Rsps{inner, ok}, -1,
         "q: error(1000900001), innerCode(100000016)", 0,
         Events{begin401, call, "D End do task for ability:401 failed"}},
        {"started before the failure marks it the call's own", Reg{{ANCHOR, Sas::STOPPED}, {401, Sas::STARTED}}, 401,
         Rsps{bad, ok}, -1, "bad: error(401), innerCode(100000143)", 0,
         Events{begin401, call, "E Task for ability:401 is started"}},
        {"an absent ability is waited for ten polls", Reg{{ANCHOR, Sas::STARTED}}, 401, Rsps{bad, ok}, -1,
         "bad: error(1000900001), innerCode(100000142)", 10, Events{begin401, call, "E Task for ability:401 stopped"}},
        {"started during the wait is retried", Reg{{ANCHOR, Sas::STARTED}, {401, Sas::STOPPED}}, 401, Rsps{inner, ok},
         30, "", 2, Events{begin401, call, again401, call}},
        {"failed retry marked", Reg{{ANCHOR, Sas::STARTED}, {401, Sas::STOPPED}}, 401, Rsps{bad, inner}, 30,
         "q: error(1000900001), innerCode(100000143)", 2,
         Events{begin401, call, again401, call, "E Sa interface invoke fail"}},
        {"1301 with its retry code waits even without the anchor", Reg{}, 1301, Rsps{wait, ok}, -1, "", 10,
         Events{begin1301, call, again1301, call}},
        {"1301 with its retry code waits although started", Reg{{ANCHOR, Sas::STARTED}, {1301, Sas::STARTED}}, 1301,
         Rsps{wait, wait}, -1, "busy: error(1000900001), innerCode(100000143)", 1,
         Events{begin1301, call, again1301, call, "E Sa interface invoke fail"}},
        {"1301, another code: no wait", Reg{}, 1301, Rsps{inner, ok}, -1, "q: error(1000900001), innerCode(100000016)",
         0, Events{begin1301, call, "D End do task for ability:1301 failed"}},
        {"the retry code, another ability: no wait", Reg{}, 401, Rsps{wait, ok}, -1,
         "busy: error(1000900001), innerCode(100000155)", 0,
         Events{begin401, call, "D End do task for ability:401 failed"}},
    };
    for (const auto& c : cases) {
        Sas::saStatuss.clear();
        for (const auto& [id, status] : c.registry) {
            Sas::SetStatus(id, status);
        }
        Kavo::LogCapture capture;
        std::thread reporter;
        size_t calls = 0;
        auto task = [&]() {
            if (calls == 0 && c.startedAfterMs >= 0) {
                reporter = std::thread([&c] {
                    std::this_thread::sleep_for(std::chrono::milliseconds(c.startedAfterMs));
                    Sas::SetStatus(c.abilityId, Sas::STARTED);
                });
            }
            PUSH_LOGI("call");
            return c.attempts[calls++];
        };
        auto start = Clock::now();
        PushBaseRsp rsp = Sas::DoSystemAbilityTaskWithRetry(c.abilityId, task);
        auto waited = Clock::now() - start;
        if (reporter.joinable()) {
            reporter.join();
        }
        Events events;
        for (const auto& line : capture.Lines()) {
            events.push_back("???DIWEF"[line.level] + (" " + line.text));
        }
        EXPECT_EQ(rsp.GetInfo(), c.info) << c.name;
        EXPECT_EQ(rsp.GetSubStatusCode(), c.attempts[calls - 1].GetSubStatusCode()) << c.name;
        EXPECT_EQ(events, c.events) << c.name;
        EXPECT_GE(waited, std::chrono::milliseconds(c.polls * POLL_MS)) << c.name;
        EXPECT_LT(waited, std::chrono::milliseconds((c.polls + 4) * POLL_MS)) << c.name;
    }
    Sas::saStatuss.clear();
    Sas::SetPollIntervalForTesting(0);
}

}  // namespace
