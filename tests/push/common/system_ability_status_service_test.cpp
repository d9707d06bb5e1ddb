// The task runner over the readiness registry: when it waits and retries, its codes and lines.
#include "kavo/push/common/system_ability_status_service.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/common/push_log.h"
#include "tests/support/test_support.h"

namespace {

// The pauses the library asks for while a test records them, in milliseconds, taken at once.
bool recording = false;
std::vector<long> pauses;

}  // namespace

// The library sleeps through nanosleep; the program's definition, exported, comes before the C
// library's.
extern "C" __attribute__((visibility("default"))) int nanosleep(const struct timespec* request, struct timespec* remaining)
{
    if (recording) {
        pauses.push_back(request->tv_sec * 1000 + request->tv_nsec / 1000000);
        return 0;
    }
    return static_cast<int>(syscall(SYS_clock_nanosleep, CLOCK_REALTIME, 0, request, remaining));
}

namespace {

using namespace Kavo::Push;
using Sas = SystemAbilityStatusService;

constexpr int ANCHOR = 65728;  // the ability whose presence makes the registry answer

TEST(SystemAbilityStatusServiceTest, TaskRunnerWaitsOnlyForStoppedServices)
{
    const PushBaseRsp ok;
    const PushBaseRsp bad(6, PUSH_ERR_INVALID_PARAM, "bad");
    const PushBaseRsp inner(PUSH_ERR_SYSTEM_INTERNAL, 100000016, std::string("q"));
    const PushBaseRsp wait(PUSH_ERR_SYSTEM_INTERNAL, INNER_ERR_SA_WAIT_AND_RETRY, std::string("busy"));
    using Registry = std::vector<std::pair<int, Sas::Status>>;
    using Attempts = std::vector<PushBaseRsp>;
    struct Case {
        const char* name;
        Registry registry;
        int abilityId;
        Attempts attempts;  // what each call of the task returns
        const char* info;   // of the result
        const char* lines;  // "<level letter> <text>|..."; the task logs "I call" each time it runs
        size_t polls;       // one second apart
    };
    const Case cases[] = {
        {"first success returns at once", Registry{{ANCHOR, Sas::STARTED}}, 401, Attempts{ok}, "",
         "D Begin do task for ability:401|I call|D End do task for ability:401 firstTime succeed|", 0},
        {"no anchor: the failure at once", Registry{{401, Sas::STOPPED}}, 401, Attempts{inner, ok},
         "q: error(1000900001), innerCode(100000016)",
         "D Begin do task for ability:401|I call|D End do task for ability:401 failed|", 0},
        {"started before the failure marks it the call's own", Registry{{ANCHOR, Sas::STOPPED}, {401, Sas::STARTED}},
         401, Attempts{bad, ok}, "bad: error(401), innerCode(100000143)",
         "D Begin do task for ability:401|I call|E Task for ability:401 is started|", 0},
        {"1301 with its retry code waits although started; a failed retry is marked",
         Registry{{ANCHOR, Sas::STARTED}, {1301, Sas::STARTED}}, 1301, Attempts{wait, wait},
         "busy: error(1000900001), innerCode(100000143)",
         "D Begin do task for ability:1301|I call|W Begin do task for ability:1301 again|I call|"
         "E Sa interface invoke fail|", 1},
        {"a stopped service that never comes: ten polls, then the failure", Registry{{ANCHOR, Sas::STARTED}}, 401,
         Attempts{bad, ok}, "bad: error(1000900001), innerCode(100000142)",
         "D Begin do task for ability:401|I call|E Task for ability:401 stopped|", 10},
        {"1301, another code: no wait", Registry{}, 1301, Attempts{inner, ok},
         "q: error(1000900001), innerCode(100000016)",
         "D Begin do task for ability:1301|I call|D End do task for ability:1301 failed|", 0},
        {"the retry code, another ability: no wait", Registry{}, 401, Attempts{wait, ok},
         "busy: error(1000900001), innerCode(100000155)",
         "D Begin do task for ability:401|I call|D End do task for ability:401 failed|", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sas::saStatuss.clear();
        for (const auto& [id, status] : c.registry) {
            Sas::SetStatus(id, status);
        }
        Kavo::LogCapture capture;
        size_t calls = 0;
        pauses.clear();
        recording = true;
        PushBaseRsp rsp = Sas::DoSystemAbilityTaskWithRetry(c.abilityId, [&]() {
            PUSH_LOGI("call");
            return c.attempts[calls++];
        });
        recording = false;
        std::string lines;
        for (const auto& line : KavoTest::LogLines(capture)) {
            lines += line + "|";
        }
        EXPECT_EQ(rsp.GetInfo(), c.info);
        EXPECT_EQ(rsp.GetSubStatusCode(), c.attempts[calls - 1].GetSubStatusCode());
        EXPECT_EQ(lines, c.lines);
        EXPECT_EQ(pauses, std::vector<long>(c.polls, 1000));
    }
    Sas::saStatuss = {{ANCHOR, Sas::STARTED}};
    EXPECT_EQ(Sas::GetStatus(401), Sas::STOPPED) << "an ability never reported counts as stopped";
    Sas::saStatuss.clear();
}

}  // namespace
