// BaseUtil: split, hash, join, strict decimal conversion and the blind retry loop.
#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/common/base_util.h"
#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using Strings = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

TEST(BaseUtilStringTest, SplitHashAndJoin)
{
    struct SplitCase {
        const char* name;
        std::string str, pattern;
        Strings tokens;
    };
    const SplitCase splits[] = {
        {"empty text gives no token", "", "\\.", {}},
        {"escaped dot splits on dots, the trailing one giving no token", "com..app.", "\\.", {"com", "", "app"}},
    };
    for (const auto& c : splits) {
        EXPECT_EQ(BaseUtil::StringSplit(c.str, c.pattern), c.tokens) << c.name;
    }
    for (const char* bad : {"[", "a{2,1}"}) {
        EXPECT_THROW(BaseUtil::StringSplit("", bad), std::regex_error) << bad << " on empty text";
    }
    const std::pair<std::string, int> hashes[] = {
        {"", 0}, {"\xff", -1}, {"a\xff", 3006}, {"hello world", 1794106052}, {"polygenelubricants", INT32_MIN}};
    for (const auto& [str, hash] : hashes) {
        EXPECT_EQ(BaseUtil::HashCode(str), hash) << str;
    }
    const std::pair<Strings, std::string> joins[] = {{{}, ""}, {{"a"}, "a"}, {{"a", "", "b"}, "a##b"}};
    for (const auto& [items, joined] : joins) {
        EXPECT_EQ(BaseUtil::vectorToString(items), joined) << joined;
    }
}

constexpr int UNTOUCHED = 12345;

TEST(BaseUtilSafeStoiTest, AcceptsOnlyAMinusAndDigitsInIntRange)
{
    const std::pair<std::string, int> accepted[] = {
        {"007", 7}, {"-0", 0}, {"2147483647", 2147483647}, {"-2147483648", INT32_MIN}};
    for (const auto& [str, expected] : accepted) {
        int value = 1;
        EXPECT_TRUE(BaseUtil::SafeStoi(str, value)) << str;
        EXPECT_EQ(value, expected);
    }
    const std::pair<const char*, Strings> rejections[] = {
        // the one line logged, the inputs
        {"E input string is empty", Strings{""}},
        {"E copy string is empty", Strings{"-"}},
        {"E input char is not a digit", Strings{"+1", " 1", "--1", "12a", std::string("1\0002", 3)}},
        {"E convert is invalid", Strings{"2147483648", "-2147483649", "-9223372036854775808"}}};
    for (const auto& [log, inputs] : rejections) {
        for (const std::string& str : inputs) {
            Kavo::LogCapture capture;
            int value = UNTOUCHED;
            EXPECT_FALSE(BaseUtil::SafeStoi(str, value)) << str;
            EXPECT_EQ(value, UNTOUCHED) << str;
            EXPECT_EQ(KavoTest::LogLines(capture), Strings{log}) << str;
        }
    }
    for (const char* input : {"9223372036854775808", "-9223372036854775809"}) {
        int value = UNTOUCHED;
        EXPECT_THROW(BaseUtil::SafeStoi(input, value), std::out_of_range) << input;
        EXPECT_EQ(value, UNTOUCHED) << input;
    }
}

TEST(BaseUtilRetryTest, RunsUntilSuccessOrRetriesAreSpentPausingBetweenCalls)
{
    constexpr int NEVER = 0;
    struct Case {
        const char* name;
        int retryTimes, intervalMs;
        int succeedOnCall, calls;  // succeedOnCall NEVER: every attempt fails
    };
    const Case cases[] = {
        {"success first time", 3, 20, 1, 1},
        {"negative retries runs once", -4, 20, NEVER, 1},
        {"three retries all failing runs four times", 3, 20, NEVER, 4},
        {"a negative interval retries without pausing (else this run hangs)", 2, INT32_MIN, NEVER, 3},
        {"a one-millisecond interval pauses too", 1, 1, NEVER, 2},
    };
    // Only lower bounds on the pauses: a loaded machine may stretch them, never shorten them.
    for (const auto& c : cases) {
        std::vector<Clock::time_point> times;
        auto call = [&]() {
            times.push_back(Clock::now());
            int n = static_cast<int>(times.size());
            return n == c.succeedOnCall ? PushBaseRsp() : PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "attempt %d", n);
        };
        PushBaseRsp rsp = BaseUtil::DoSystemAbilityApiCallWithRetry(call, c.retryTimes, c.intervalMs);
        EXPECT_EQ(static_cast<int>(times.size()), c.calls) << c.name;
        EXPECT_EQ(rsp.GetErrDescription(), c.succeedOnCall == c.calls ? "" : "attempt " + std::to_string(c.calls))
            << c.name;
        for (size_t i = 1; i < times.size(); ++i) {
            EXPECT_GE(times[i] - times[i - 1], std::chrono::milliseconds(c.intervalMs)) << c.name;
        }
    }
}

}  // namespace
