// The platform log: the privacy formatter against printf, the stderr level filter, the
// KAVO_LOG_PRIVATE switch and the capture (fields, nesting, lines from several threads).
#include <gtest/gtest.h>

#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <set>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "kavo/host/log/log.h"
#include "tests/support/test_support.h"

namespace {

using Kavo::LogCapture;
using KavoTest::ScopedEnv;

constexpr unsigned int DOMAIN = 0xD005300;
constexpr int SENTINEL = 4242;

std::string FormatLog(bool showPrivate, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    std::string text = Kavo::FormatLogMessage(fmt, args, showPrivate);
    va_end(args);
    return text;
}

std::string Printf(const char* fmt, ...)
{
    char buffer[512];
    va_list args;
    va_start(args, fmt);
    int n = std::vsnprintf(buffer, sizeof(buffer), fmt, args);
    va_end(args);
    return n < 0 ? std::string("<printf failed>") : std::string(buffer, static_cast<size_t>(n));
}

// One argument of the type its conversion expects.
using Arg = std::variant<int, unsigned int, long, long long, unsigned long long, size_t, const char*, void*>;

// Calls `f` with the '*' values first, then the argument, then the public sentinel.
template <typename F>
std::string CallWith(F&& f, const std::vector<int>& stars, const Arg& arg)
{
    return std::visit(
        [&](auto value) {
            if (stars.size() == 2) {
                return f(stars[0], stars[1], value, SENTINEL);
            }
            if (stars.size() == 1) {
                return f(stars[0], value, SENTINEL);
            }
            return f(value, SENTINEL);
        },
        arg);
}

struct ConversionCase {
    const char* name;
    const char* conversion;  // the conversion after '%', without a privacy marker
    std::vector<int> stars;
    Arg arg;
};

const std::vector<ConversionCase>& ConversionCases()
{
    static const std::vector<ConversionCase> cases = {
        {"plain int", "d", {}, 42},
        {"negative int with plus flag", "+d", {}, -17},
        {"space flag", " d", {}, 5},
        {"zero padded negative int", "08d", {}, -42},
        {"left justified int", "-6d", {}, 3},
        {"int precision pads with zeros", ".5d", {}, 42},
        {"i conversion", "i", {}, INT_MIN},
        {"unsigned max", "u", {}, UINT_MAX},
        {"unsigned with width", "12u", {}, 7u},
        {"hh truncates like printf", "hhd", {}, 300},
        {"h truncates like printf", "hd", {}, 70000},
        {"long min", "ld", {}, LONG_MIN},
        {"long long max", "lld", {}, LLONG_MAX},
        {"long long negative with width", "-22lld", {}, -9000000000LL},
        {"unsigned long long max", "llu", {}, ULLONG_MAX},
        {"size_t max", "zu", {}, SIZE_MAX},
        {"size_t with width", "10zu", {}, size_t{12}},
        {"string", "s", {}, "bundle.name"},
        {"string right justified", "12s", {}, "abc"},
        {"string left justified", "-12s", {}, "abc"},
        {"string precision cuts", ".3s", {}, "abcdef"},
        {"string width and precision", "8.2s", {}, "abcdef"},
        {"null string", "s", {}, static_cast<const char*>(nullptr)},
        {"empty string", "s", {}, ""},
        {"char", "c", {}, 'x'},
        {"char with width", "3c", {}, 'y'},
        {"char left justified", "-3c", {}, 'z'},
        {"hex", "x", {}, 255},
        {"hex alternate form", "#x", {}, 255},
        {"hex zero padded alternate form", "#010x", {}, 0xbeef},
        {"hex of a negative int", "x", {}, -1},
        {"upper hex", "X", {}, 0xabc},
        {"long hex", "lx", {}, 0xdeadbeefcafeL},
        {"pointer", "p", {}, reinterpret_cast<void*>(uintptr_t{0x1234abcd})},
        {"null pointer", "p", {}, static_cast<void*>(nullptr)},
        {"pointer with width", "20p", {}, reinterpret_cast<void*>(uintptr_t{0xfeed})},
        {"star width", "*d", {6}, 12},
        {"negative star width left justifies", "*d", {-6}, 12},
        {"star precision", ".*d", {5}, 42},
        {"negative star precision is ignored", ".*d", {-1}, 42},
        {"star width and precision on a string", "*.*s", {8, 2}, "abcdef"},
        {"star width on a long long", "*lld", {25}, LLONG_MIN},
        {"star precision on a string", ".*s", {3}, "abcdef"},
        {"star width on size_t", "*zu", {4}, size_t{9}},
    };
    return cases;
}

class LogFormatTest : public ::testing::Test {};

TEST_F(LogFormatTest, PublicConversionPrintsExactlyAsPrintf)
{
    for (const auto& c : ConversionCases()) {
        std::string logFmt = std::string("[%{public}") + c.conversion + "] %{public}d";
        std::string printfFmt = std::string("[%") + c.conversion + "] %d";
        auto viaLog = [&](auto... a) { return FormatLog(false, logFmt.c_str(), a...); };
        auto viaPrintf = [&](auto... a) { return Printf(printfFmt.c_str(), a...); };
        EXPECT_EQ(CallWith(viaLog, c.stars, c.arg), CallWith(viaPrintf, c.stars, c.arg)) << c.name;
    }
}

TEST_F(LogFormatTest, MaskedConversionPrintsPrivateAndStillConsumesItsArguments)
{
    const char* markers[] = {"%", "%{private}"};
    for (const auto& c : ConversionCases()) {
        for (const char* marker : markers) {
            std::string logFmt = std::string("[") + marker + c.conversion + "] %{public}d";
            auto viaLog = [&](auto... a) { return FormatLog(false, logFmt.c_str(), a...); };
            EXPECT_EQ(CallWith(viaLog, c.stars, c.arg), "[<private>] " + std::to_string(SENTINEL))
                << c.name << " with " << marker;
        }
    }
}

TEST_F(LogFormatTest, ShowPrivatePrintsMaskedConversionsAsPrintf)
{
    for (const auto& c : ConversionCases()) {
        std::string logFmt = std::string("[%{private}") + c.conversion + "] %d";
        std::string printfFmt = std::string("[%") + c.conversion + "] %d";
        auto viaLog = [&](auto... a) { return FormatLog(true, logFmt.c_str(), a...); };
        auto viaPrintf = [&](auto... a) { return Printf(printfFmt.c_str(), a...); };
        EXPECT_EQ(CallWith(viaLog, c.stars, c.arg), CallWith(viaPrintf, c.stars, c.arg)) << c.name;
    }
}

TEST_F(LogFormatTest, MixedLinesKeepEveryArgumentInPlace)
{
    struct Case {
        const char* name;
        std::string text;
        const char* expected;
    };
    const Case cases[] = {
        {"masked string between two public ints",
         FormatLog(false, "%{public}d %s %{public}d", 1, "secret", 2), "1 <private> 2"},
        {"masked 64-bit value before a public string",
         FormatLog(false, "%lld:%{public}s", LLONG_MAX, "shown"), "<private>:shown"},
        {"masked star width and precision before a public int",
         FormatLog(false, "%*.*s|%{public}d", 10, 2, "abcdef", 9), "<private>|9"},
        {"several masked values in a row",
         FormatLog(false, "%d%s%zu%p%{public}c", 1, "a", size_t{2}, nullptr, 'k'),
         "<private><private><private><private>k"},
        {"percent escape is literal", FormatLog(false, "100%% of %{public}d", 7), "100% of 7"},
        {"percent escape before a marker is not a conversion", FormatLog(false, "%%{public}d"), "%{public}d"},
        {"percent escape between masked and public", FormatLog(false, "%s%%%{public}s", "x", "y"), "<private>%y"},
        {"no conversion at all", FormatLog(false, "Sa interface invoke fail"), "Sa interface invoke fail"},
        {"empty format", FormatLog(false, ""), ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.text, c.expected) << c.name;
    }
}

class LogPrintTest : public ::testing::Test {
protected:
    // Prints one line with stderr captured; returns what reached stderr.
    static std::string PrintToStderr(Kavo::LogLevel level, const char* fmt, int value)
    {
        ::testing::internal::CaptureStderr();
        Kavo::LogPrint(Kavo::LOG_CORE, level, DOMAIN, "push", fmt, value);
        return ::testing::internal::GetCapturedStderr();
    }
};

TEST_F(LogPrintTest, CaptureRecordsTypeLevelDomainTagAndText)
{
    struct Case {
        const char* name;
        Kavo::LogType type;
        Kavo::LogLevel level;
        unsigned int domain;
        const char* tag;
        const char* expectedTag;
    };
    const Case cases[] = {
        {"library error line", Kavo::LOG_CORE, Kavo::LOG_ERROR, DOMAIN, "push", "push"},
        {"debug line", Kavo::LOG_CORE, Kavo::LOG_DEBUG, DOMAIN, "push", "push"},
        {"other type and domain", Kavo::LOG_APP, Kavo::LOG_INFO, 0xD001234, "other", "other"},
        {"null tag is empty", Kavo::LOG_CORE, Kavo::LOG_WARN, DOMAIN, nullptr, ""},
    };
    ScopedEnv level("KAVO_LOG_LEVEL", "fatal");
    ScopedEnv privacy("KAVO_LOG_PRIVATE", nullptr);
    for (const auto& c : cases) {
        LogCapture capture;
        Kavo::LogPrint(c.type, c.level, c.domain, c.tag, "id %{public}d name %s", 7, "n");
        auto lines = capture.Lines();
        ASSERT_EQ(lines.size(), 1u) << c.name;
        EXPECT_EQ(lines[0].type, c.type) << c.name;
        EXPECT_EQ(lines[0].level, c.level) << c.name;
        EXPECT_EQ(lines[0].domain, c.domain) << c.name;
        EXPECT_EQ(lines[0].tag, c.expectedTag) << c.name;
        EXPECT_EQ(lines[0].text, "id 7 name <private>") << c.name;
    }
}

TEST_F(LogPrintTest, LevelFilterDecidesStderrWhileCaptureSeesEveryLine)
{
    struct Case {
        const char* name;
        const char* setting;  // nullptr: unset
        Kavo::LogLevel level;
        const char* stderrText;
    };
    const Case cases[] = {
        {"default hides info", nullptr, Kavo::LOG_INFO, ""},
        {"default hides debug", nullptr, Kavo::LOG_DEBUG, ""},
        {"default shows warn", nullptr, Kavo::LOG_WARN, "WARN D005300/push: Task for ability:401 stopped\n"},
        {"default shows error", nullptr, Kavo::LOG_ERROR, "ERROR D005300/push: Task for ability:401 stopped\n"},
        {"debug shows debug", "debug", Kavo::LOG_DEBUG, "DEBUG D005300/push: Task for ability:401 stopped\n"},
        {"info shows info", "info", Kavo::LOG_INFO, "INFO D005300/push: Task for ability:401 stopped\n"},
        {"info hides debug", "info", Kavo::LOG_DEBUG, ""},
        {"warn hides info", "warn", Kavo::LOG_INFO, ""},
        {"error hides warn", "error", Kavo::LOG_WARN, ""},
        {"error shows error", "error", Kavo::LOG_ERROR, "ERROR D005300/push: Task for ability:401 stopped\n"},
        {"unknown setting falls back to warn", "verbose", Kavo::LOG_WARN,
         "WARN D005300/push: Task for ability:401 stopped\n"},
        {"unknown setting still hides info", "verbose", Kavo::LOG_INFO, ""},
    };
    ScopedEnv privacy("KAVO_LOG_PRIVATE", nullptr);
    for (const auto& c : cases) {
        ScopedEnv level("KAVO_LOG_LEVEL", c.setting);
        LogCapture capture;
        EXPECT_EQ(PrintToStderr(c.level, "Task for ability:%{public}d stopped", 401), c.stderrText) << c.name;
        EXPECT_EQ(capture.Texts(), std::vector<std::string>{"Task for ability:401 stopped"}) << c.name;
    }
}

TEST_F(LogPrintTest, StderrAndCaptureFollowThePrivacySetting)
{
    struct Case {
        const char* name;
        const char* setting;
        const char* expectedText;
    };
    const Case cases[] = {
        {"unset masks", nullptr, "uid <private> of 7"},
        {"show reveals", "show", "uid 20010 of 7"},
        {"any other value masks", "1", "uid <private> of 7"},
        {"show is case-sensitive", "SHOW", "uid <private> of 7"},
    };
    ScopedEnv level("KAVO_LOG_LEVEL", "error");
    for (const auto& c : cases) {
        ScopedEnv privacy("KAVO_LOG_PRIVATE", c.setting);
        LogCapture capture;
        ::testing::internal::CaptureStderr();
        Kavo::LogPrint(Kavo::LOG_CORE, Kavo::LOG_ERROR, DOMAIN, "push", "uid %d of %{public}d", 20010, 7);
        std::string out = ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(out, std::string("ERROR D005300/push: ") + c.expectedText + "\n") << c.name;
        EXPECT_EQ(capture.Texts(), std::vector<std::string>{c.expectedText}) << c.name;
    }
}

TEST_F(LogPrintTest, NullFormatPrintsNothing)
{
    LogCapture capture;
    EXPECT_EQ(Kavo::LogPrint(Kavo::LOG_CORE, Kavo::LOG_ERROR, DOMAIN, "push", nullptr), -1);
    EXPECT_TRUE(capture.Lines().empty());
}

class LogCaptureTest : public ::testing::Test {
protected:
    static void Print(const char* text)
    {
        Kavo::LogPrint(Kavo::LOG_CORE, Kavo::LOG_DEBUG, DOMAIN, "push", "%{public}s", text);
    }
};

TEST_F(LogCaptureTest, NestedCapturesEachSeeTheLinesOfTheirLifetime)
{
    LogCapture outer;
    Print("before");
    {
        LogCapture inner;
        Print("during");
        EXPECT_EQ(inner.Texts(), (std::vector<std::string>{"during"}));
    }
    Print("after");
    EXPECT_EQ(outer.Texts(), (std::vector<std::string>{"before", "during", "after"}));
    outer.Clear();
    Print("cleared");
    EXPECT_EQ(outer.Texts(), std::vector<std::string>{"cleared"});
}

TEST_F(LogCaptureTest, LinesFromSeveralThreadsAreAllCaptured)
{
    constexpr int threads = 4;
    constexpr int perThread = 200;
    LogCapture capture;
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([t] {
            LogCapture own;  // a capture living on another thread sees its own lines too
            for (int i = 0; i < perThread; ++i) {
                Kavo::LogPrint(Kavo::LOG_CORE, Kavo::LOG_DEBUG, DOMAIN, "push", "thread %{public}d line %{public}d",
                               t, i);
            }
            EXPECT_GE(own.Lines().size(), static_cast<size_t>(perThread));
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    auto texts = capture.Texts();
    std::set<std::string> distinct(texts.begin(), texts.end());
    EXPECT_EQ(texts.size(), static_cast<size_t>(threads * perThread));
    EXPECT_EQ(distinct.size(), static_cast<size_t>(threads * perThread));
    EXPECT_EQ(distinct.count("thread 3 line 199"), 1u);
}

}  // namespace
