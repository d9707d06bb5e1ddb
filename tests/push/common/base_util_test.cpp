// BaseUtil: the regular-expression split, the 31-multiplier hash, the "#" join, the strict
// decimal conversion with its log lines, and the blind retry loop.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/common/base_util.h"

namespace {

using namespace Kavo::Push;
using Strings = std::vector<std::string>;

class BaseUtilStringTest : public ::testing::Test {};

TEST_F(BaseUtilStringTest, StringSplitFollowsTheTokenIterator)
{
    struct Case {
        const char* name;
        std::string str;
        std::string pattern;
        Strings tokens;
    };
    const Case cases[] = {
        {"empty text gives no token", "", ",", {}},
        {"empty text with a pattern that matches empty", "", "x*", {}},
        {"plain separator", "a,b,c", ",", {"a", "b", "c"}},
        {"trailing separator gives no trailing token", "a,b,", ",", {"a", "b"}},
        {"leading separator gives an empty first token", ",a", ",", {"", "a"}},
        {"inner empty token kept", "a,,b", ",", {"a", "", "b"}},
        {"only a separator", ",", ",", {""}},
        {"no match gives the text", "abc", ",", {"abc"}},
        {"pattern is a regular expression", "a1b22c", "[0-9]+", {"a", "b", "c"}},
        {"unescaped dot matches every character", "a.b", ".", {"", "", ""}},
        {"escaped dot splits on dots", "com.example.app", "\\.", {"com", "example", "app"}},
        {"several characters as one separator", "k1=>v1=>k2", "=>", {"k1", "v1", "k2"}},
        {"alternation", "a;b|c", ";|\\|", {"a", "b", "c"}},
        {"blank runs", "  a  b ", " +", {"", "a", "b"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(BaseUtil::StringSplit(c.str, c.pattern), c.tokens) << c.name;
    }
}

TEST_F(BaseUtilStringTest, StringSplitLetsABadPatternThrow)
{
    const char* patterns[] = {"[", "(", "a{2,1}", "*", "\\"};
    for (const char* pattern : patterns) {
        EXPECT_THROW(BaseUtil::StringSplit("a,b", pattern), std::regex_error) << pattern;
        EXPECT_THROW(BaseUtil::StringSplit("", pattern), std::regex_error) << pattern << " on empty text";
    }
}

TEST_F(BaseUtilStringTest, HashCodeIsTheClassicStringHashOverSignedBytes)
{
    struct Case {
        const char* name;
        std::string str;
        int hash;
    };
    const Case cases[] = {
        {"empty", "", 0},
        {"one letter", "a", 97},
        {"two letters", "ab", 3105},
        {"byte 0xFF counts as -1", "\xff", -1},
        {"byte 0xFF after a letter", "a\xff", 3006},
        {"byte 0x80 counts as -128", "\x80", -128},
        {"two-byte utf-8 letter", "\xc3\xa9", -1978},
        {"wraps around modulo 2^32", "hello world", 1794106052},
        {"wraps to the smallest int", "polygenelubricants", INT32_MIN},
        {"bundle name", "com.example.app", 718974640},
        {"embedded zero byte counts", std::string("a\0", 2), 3007},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(BaseUtil::HashCode(c.str), c.hash) << c.name;
    }
}

TEST_F(BaseUtilStringTest, VectorToStringJoinsWithHash)
{
    struct Case {
        const char* name;
        Strings items;
        std::string joined;
    };
    const Case cases[] = {
        {"empty vector", {}, ""},
        {"one item", {"a"}, "a"},
        {"two items", {"a", "b"}, "a#b"},
        {"empty item keeps its separators", {"a", "", "b"}, "a##b"},
        {"only empty items", {"", ""}, "#"},
        {"items containing the separator", {"a#b", "c"}, "a#b#c"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(BaseUtil::vectorToString(c.items), c.joined) << c.name;
    }
}

class BaseUtilSafeStoiTest : public ::testing::Test {
protected:
    static constexpr int UNTOUCHED = 12345;
};

TEST_F(BaseUtilSafeStoiTest, AcceptsOnlyASignAndDigitsInIntRange)
{
    struct Case {
        const char* name;
        std::string str;
        bool ok;
        int value;
        const char* log;  // the one error line of a rejection
    };
    const Case cases[] = {
        {"zero", "0", true, 0, nullptr},
        {"leading zeros", "007", true, 7, nullptr},
        {"negative zero", "-0", true, 0, nullptr},
        {"int max", "2147483647", true, 2147483647, nullptr},
        {"int min", "-2147483648", true, INT32_MIN, nullptr},
        {"many leading zeros", "0000000000000000000042", true, 42, nullptr},
        {"empty", "", false, UNTOUCHED, "input string is empty"},
        {"lone minus", "-", false, UNTOUCHED, "copy string is empty"},
        {"plus sign", "+1", false, UNTOUCHED, "input char is not a digit"},
        {"leading blank", " 1", false, UNTOUCHED, "input char is not a digit"},
        {"trailing blank", "1 ", false, UNTOUCHED, "input char is not a digit"},
        {"double minus", "--1", false, UNTOUCHED, "input char is not a digit"},
        {"minus then plus", "-+1", false, UNTOUCHED, "input char is not a digit"},
        {"hex prefix", "0x10", false, UNTOUCHED, "input char is not a digit"},
        {"letter after digits", "12a", false, UNTOUCHED, "input char is not a digit"},
        {"decimal point", "1.5", false, UNTOUCHED, "input char is not a digit"},
        {"minus inside", "1-2", false, UNTOUCHED, "input char is not a digit"},
        {"embedded zero byte", std::string("1\0" "2", 3), false, UNTOUCHED, "input char is not a digit"},
        {"one past int max", "2147483648", false, UNTOUCHED, "convert is invalid"},
        {"one past int min", "-2147483649", false, UNTOUCHED, "convert is invalid"},
        {"long long max", "9223372036854775807", false, UNTOUCHED, "convert is invalid"},
        {"long long min", "-9223372036854775808", false, UNTOUCHED, "convert is invalid"},
    };
    for (const auto& c : cases) {
        Kavo::LogCapture capture;
        int value = UNTOUCHED;
        EXPECT_EQ(BaseUtil::SafeStoi(c.str, value), c.ok) << c.name;
        EXPECT_EQ(value, c.value) << c.name;
        auto lines = capture.Lines();
        if (c.log == nullptr) {
            EXPECT_TRUE(lines.empty()) << c.name;
            continue;
        }
        ASSERT_EQ(lines.size(), 1u) << c.name;
        EXPECT_EQ(lines[0].text, c.log) << c.name;
        EXPECT_EQ(lines[0].level, Kavo::LOG_ERROR) << c.name;
        EXPECT_EQ(lines[0].type, Kavo::LOG_CORE) << c.name;
        EXPECT_EQ(lines[0].domain, 0xD005300u) << c.name;
        EXPECT_EQ(lines[0].tag, "push") << c.name;
    }
}

TEST_F(BaseUtilSafeStoiTest, DigitsPastThe64BitRangeThrowOutOfRange)
{
    const char* inputs[] = {"9223372036854775808", "-9223372036854775809", "99999999999999999999999999"};
    for (const char* input : inputs) {
        int value = UNTOUCHED;
        EXPECT_THROW(BaseUtil::SafeStoi(input, value), std::out_of_range) << input;
        EXPECT_EQ(value, UNTOUCHED) << input;
    }
}

class BaseUtilRetryTest : public ::testing::Test {
protected:
    using Clock = std::chrono::steady_clock;
};

TEST_F(BaseUtilRetryTest, RunsUntilSuccessOrRetriesAreSpent)
{
    constexpr int NEVER = 0;
    struct Case {
        const char* name;
        int retryTimes;
        int intervalMs;
        int succeedOnCall;  // NEVER: every attempt fails
        int calls;
        bool succeed;
    };
    const Case cases[] = {
        {"success first time", 3, 20, 1, 1, true},
        {"zero retries runs once", 0, 20, NEVER, 1, false},
        {"negative retries runs once", -4, 20, NEVER, 1, false},
        {"three retries all failing runs four times", 3, 20, NEVER, 4, false},
        {"success on the third call stops there", 5, 20, 3, 3, true},
        {"success on the last allowed call", 2, 20, 3, 3, true},
        {"zero interval still retries", 2, 0, NEVER, 3, false},
        {"negative interval still retries", 2, -50, NEVER, 3, false},
    };
    for (const auto& c : cases) {
        std::vector<Clock::time_point> times;
        auto call = [&]() {
            times.push_back(Clock::now());
            int n = static_cast<int>(times.size());
            if (n == c.succeedOnCall) {
                return PushBaseRsp();
            }
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "attempt %d", n);
        };
        PushBaseRsp rsp = BaseUtil::DoSystemAbilityApiCallWithRetry(call, c.retryTimes, c.intervalMs);
        EXPECT_EQ(static_cast<int>(times.size()), c.calls) << c.name;
        EXPECT_EQ(rsp.Succeed(), c.succeed) << c.name;
        if (!c.succeed) {
            EXPECT_EQ(rsp.GetErrDescription(), "attempt " + std::to_string(c.calls)) << c.name;
        }
        for (size_t i = 1; i < times.size(); ++i) {
            auto gap = std::chrono::duration_cast<std::chrono::milliseconds>(times[i] - times[i - 1]).count();
            EXPECT_GE(gap, c.intervalMs > 0 ? c.intervalMs : 0) << c.name << " pause before call " << i + 1;
        }
    }
}

TEST_F(BaseUtilRetryTest, EveryFailureKindIsRetriedAndTheLastReturnedAsItIs)
{
    std::vector<PushBaseRsp> results = {PushBaseRsp(INNER_ERR_SA_STOPPED),
                                        PushBaseRsp(PUSH_ERR_INVALID_PARAM, std::string("bad")),
                                        PushBaseRsp(7, PUSH_ERR_CALLER_ILLEGAL, "last")};
    size_t calls = 0;
    PushBaseRsp rsp = BaseUtil::DoSystemAbilityApiCallWithRetry([&] { return results[calls++]; }, 2, 0);
    EXPECT_EQ(calls, 3u);
    EXPECT_EQ(rsp.GetErr(), PUSH_ERR_CALLER_ILLEGAL);
    EXPECT_EQ(rsp.GetErrDescription(), "last");
    EXPECT_EQ(rsp.GetSubStatusCode(), 7);
}

TEST_F(BaseUtilRetryTest, NegativeIntervalDoesNotPause)
{
    auto start = Clock::now();
    PushBaseRsp rsp = BaseUtil::DoSystemAbilityApiCallWithRetry(
        [] { return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL); }, 3, -2000);
    EXPECT_FALSE(rsp.Succeed());
    EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(1000));
}

TEST_F(BaseUtilRetryTest, AnEmptyCallThrows)
{
    EXPECT_THROW(BaseUtil::DoSystemAbilityApiCallWithRetry(nullptr, 3, 0), std::bad_function_call);
}

}  // namespace
