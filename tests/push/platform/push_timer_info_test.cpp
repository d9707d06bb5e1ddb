// The timer record: what the time service runs when the timer fires.
#include "kavo/push/platform/push_timer_info.h"

#include <gtest/gtest.h>

namespace {

TEST(PushTimerInfoTest, EachTriggerRunsTheCallbackAndNoneIsHarmless)
{
    Kavo::Push::PushTimerInfo timer(30);
    timer.OnTrigger();
    int fired = 0;
    timer.SetCallback([&fired] { ++fired; });
    timer.OnTrigger();
    timer.OnTrigger();
    EXPECT_EQ(fired, 2);
}

}  // namespace
