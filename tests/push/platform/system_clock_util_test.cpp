// The boot clock against a fixed answer of the time service.
#include "kavo/push/platform/system_clock_util.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/push/platform/timer_fixture.h"

namespace KavoTest {
namespace {

using Kavo::MiscServices::TimeServiceClient;
using SystemClockUtilTest = TimerFixture;

TEST_F(SystemClockUtilTest, BootClockBelowOneIsReplacedByMinusOne)
{
    const std::pair<int64_t, int64_t> cases[] = {{0, -1}, {1, 1}, {86400000LL * 400, 86400000LL * 400}};
    for (const auto& [answer, result] : cases) {
        bootMs_ = answer;
        EXPECT_EQ(Kavo::Push::SystemClockUtil::GetBootTimeMillis(), result);
        EXPECT_EQ(events_.Take(), (answer < 1 ? Events{{18, "GetBootTimeMs", 1, std::to_string(answer)}} : Events{}));
    }
    TimeServiceClient::SetClientAvailable(false);
    EXPECT_EQ(Kavo::Push::SystemClockUtil::GetBootTimeMillis(), -1);
    EXPECT_EQ(events_.Take(), (Events{{18, "GetBootTimeMs", 1, "0"}})) << "no client reads as boot time 0";
}

}  // namespace
}  // namespace KavoTest
