// Identifier masks: the alternating mask of addresses and the per-kind masks of tags.
#include <gtest/gtest.h>

#include <string>

#include "kavo/push/common/push_logger.h"

namespace {

using Kavo::Push::PushLogger;

struct MaskCase {
    const char* name;
    std::string input;
    std::string masked;
};

TEST(PushLoggerTest, GuardMasksEverySecondLetterOrDigitAndTagsByKind)
{
    const MaskCase cases[] = {
        {"dots continue the alternation", "192.168.1.10", "1*2.*6*.1.*0"},
        {"colons continue the alternation", "fe80::1ff:fe23", "f*8*::1*f:*e*3"},
        {"dash restarts the alternation", "ab-cd", "a*-c*"},
        {"non-ascii bytes restart it", "é1a", "é1*"},
        {"the ends of each range count, the bytes beside them do not", "@AZ[`az{/09;", "@A*[`a*{/0*;"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PushLogger::LogGuard(c.input), c.masked) << c.name;
    }
    const MaskCase tagCases[] = {
        {"wifi tag of 22 characters with colons", "wifi_00:11:22:33:44:55", "wifi_00:11:22:33:**:**"},
        {"wifi tag of 21 characters falls back to half", "wifi_0:11:22:33:44:55", "wifi_0:11:**:**:**:**"},
        {"longer wifi tag keeps what follows", "wifi_00-11-22-33-44-55-66", "wifi_00-11-22-33-**-**-66"},
        {"a colon anywhere picks the colon mask", "wi:fi-wifi-0123456789ab", "wi:fi-wifi-012345**:**b"},
        {"wifi rule wins over data", "wifidata_0123456789ab", "wifidata_0***********"},
        {"data tag of 12 characters", "data12345678", "data12***678"},
        {"data tag of 11 characters falls back to half", "data1234567", "data1******"},
        {"other tag keeps its first half, rounded down", "abcde", "ab***"},
        {"a one-character tag is masked whole", "x", "*"},
        {"dots and colons survive the half mask", "abcd:e.f", "abcd:*.*"},
    };
    for (const auto& c : tagCases) {
        EXPECT_EQ(PushLogger::LogGuardTag(c.input).c_str(), c.masked) << c.name;  // as a log line reads it
    }
}

}  // namespace
