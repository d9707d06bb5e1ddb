// The task runner over the readiness registry: when a failure is returned at once, when it waits
// for the service and retries once, which codes it sets and which lines it logs at which level.
#include "kavo/push/common/system_ability_status_service.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/common/push_log.h"

namespace {

using namespace Kavo::Push;
using Sas = SystemAbilityStatusService;

constexpr int ANCHOR = 65728;  // the ability whose presence makes the registry answer

// Only the 1301 row waits, for one real poll: its service is up before the call.
TEST(SystemAbilityStatusServiceTest, TaskRunnerWaitsOnlyForStoppedServices)
{
    const PushBaseRsp ok;
    const PushBaseRsp bad(6, PUSH_ERR_INVALID_PARAM, "bad");
    const PushBaseRsp inner(PUSH_ERR_SYSTEM_INTERNAL, 100000016, std::string("q"));
    const PushBaseRsp wait(PUSH_ERR_SYSTEM_INTERNAL, INNER_ERR_SA_WAIT_AND_RETRY, std::string("busy"));
    const std::string call = "I call", begin401 = "D Begin do task for ability:401";
    const std::string begin1301 = "D Begin do task for ability:1301";
    using Registry = std::vector<std::pair<int, Sas::Status>>;
    struct Case {
        const char* name;
        Registry registry;
        int abilityId;
        std::vector<PushBaseRsp> attempts;  // what each call of the task returns
        const char* info;                   // of the result
        std::vector<std::string> lines;     // "<level letter> <text>"; the task logs "call" each time it runs
    };
    const Case cases[] = {
        {"first success returns at once",
         {{ANCHOR, Sas::STARTED}},
         401,
         {ok},
         "",
         {begin401, call, "D End do task for ability:401 firstTime succeed"}},
        {"no anchor: the failure at once",
         {{401, Sas::STOPPED}},
         401,
         {inner, ok},
         "q: error(1000900001), innerCode(100000016)",
         {begin401, call, "D End do task for ability:401 failed"}},
        {"started before the failure marks it the call's own",
         {{ANCHOR, Sas::STOPPED}, {401, Sas::STARTED}},
         401,
         {bad, ok},
         "bad: error(401), innerCode(100000143)",
         {begin401, call, "E Task for ability:401 is started"}},
        {"1301 with its retry code waits although started; a failed retry is marked",
         {{ANCHOR, Sas::STARTED}, {1301, Sas::STARTED}},
         1301,
         {wait, wait},
         "busy: error(1000900001), innerCode(100000143)",
         {begin1301, call, "W Begin do task for ability:1301 again", call, "E Sa interface invoke fail"}},
        {"1301, another code: no wait",
         {},
         1301,
         {inner, ok},
         "q: error(1000900001), innerCode(100000016)",
         {begin1301, call, "D End do task for ability:1301 failed"}},
        {"the retry code, another ability: no wait",
         {},
         401,
         {wait, ok},
         "busy: error(1000900001), innerCode(100000155)",
         {begin401, call, "D End do task for ability:401 failed"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sas::saStatuss.clear();
        for (const auto& [id, status] : c.registry) {
            Sas::SetStatus(id, status);
        }
        Kavo::LogCapture capture;
        size_t calls = 0;
        PushBaseRsp rsp = Sas::DoSystemAbilityTaskWithRetry(c.abilityId, [&]() {
            PUSH_LOGI("call");
            return c.attempts[calls++];
        });
        std::vector<std::string> lines;
        for (const auto& line : capture.Lines()) {
            lines.push_back("???DIWEF"[line.level] + (" " + line.text));
        }
        EXPECT_EQ(rsp.GetInfo(), c.info);
        EXPECT_EQ(rsp.GetSubStatusCode(), c.attempts[calls - 1].GetSubStatusCode());
        EXPECT_EQ(lines, c.lines);
    }
    Sas::saStatuss = {{ANCHOR, Sas::STARTED}};
    EXPECT_EQ(Sas::GetStatus(401), Sas::STOPPED) << "an ability never reported counts as stopped";
    Sas::saStatuss.clear();
}

}  // namespace
