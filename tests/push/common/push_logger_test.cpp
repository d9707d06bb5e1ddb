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

class PushLoggerTest : public ::testing::Test {};

TEST_F(PushLoggerTest, LogGuardMasksEverySecondLetterOrDigit)
{
    const MaskCase cases[] = {
        {"empty", "", ""},
        {"address keeps its dots", "192.168.1.10", "1*2.*6*.1.*0"},
        {"colon continues the alternation", "ab:cd", "a*:c*"},
        {"dash restarts the alternation", "ab-cd", "a*-c*"},
        {"dash lets the next character show", "a-b", "a-b"},
        {"mac address", "AA:BB:CC:DD:EE:FF", "A*:B*:C*:D*:E*:F*"},
        {"double colon of an ipv6 address", "fe80::1ff:fe23:4567:890a", "f*8*::1*f:*e*3:*5*7:*9*a"},
        {"underscore restarts", "user_1234", "u*e*_1*3*"},
        {"single characters between blanks all show", "a b c d", "a b c d"},
        {"non-ascii bytes are separators", "\xc3\xa9" "1a", "\xc3\xa9" "1*"},
        {"mixed separators", "12.34-56", "1*.3*-5*"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PushLogger::LogGuard(c.input), c.masked) << c.name;
    }
}

TEST_F(PushLoggerTest, LogGuardTagMasksByKind)
{
    const MaskCase cases[] = {
        {"empty", "", ""},
        {"wifi tag of 22 characters with colons", "wifi_00:11:22:33:44:55", "wifi_00:11:22:33:**:**"},
        {"wifi tag of 22 characters without colon", "wifi-00-11-22-33-44-55", "wifi-00-11-22-33-**-**"},
        {"wifi tag of 21 characters falls back to half", "wifi_0:11:22:33:44:55", "wifi_0:11:**:**:**:**"},
        {"longer wifi tag keeps what follows position 21", "wifi_00-11-22-33-44-55-66-77",
         "wifi_00-11-22-33-**-**-66-77"},
        {"a colon anywhere picks the colon mask", "wi:fi-wifi-0123456789ab", "wi:fi-wifi-012345**:**b"},
        {"wifi rule wins over data", "wifidata_0123456789ab", "wifidata_0***********"},
        {"short tag naming both follows wifi", "wifidata_01234", "wifidat*******"},
        {"wifi alone", "wifi", "wi**"},
        {"wifi search is case-sensitive", "WIFI_00:11:22:33:44:55", "WIFI_00:11:**:**:**:**"},
        {"data tag of 12 characters", "data12345678", "data12***678"},
        {"data tag of 11 characters falls back to half", "data1234567", "data1******"},
        {"longer data tag masks three from position 6", "data_abcdefghij", "data_a***efghij"},
        {"data inside a short word", "mydatatag", "myda*****"},
        {"other tag keeps its first half", "abcdef", "abc***"},
        {"odd length rounds the half down", "abcde", "ab***"},
        {"dots survive the half mask", "a.b.c", "a.*.*"},
        {"colons survive the half mask", "ab:cd:ef:01", "ab:cd:**:**"},
        {"single character is masked", "x", "*"},
    };
    for (const auto& c : cases) {
        std::string masked = PushLogger::LogGuardTag(c.input);
        EXPECT_EQ(masked, c.masked) << c.name;
        EXPECT_EQ(masked.size(), c.input.size()) << c.name;
    }
}

}  // namespace
