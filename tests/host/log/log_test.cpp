#include "kavo/host/log/log.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <set>
#include <thread>
#include <variant>

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
    return std::string(buffer, n < 0 ? 0 : static_cast<size_t>(n));
}

// Formats "[%<marker><conversion>] %{public}d" (a null marker: printf's "[%<conversion>] %d") with
// the '*' values, the argument and SENTINEL.
struct Conversion {
    const char* conversion;
    std::vector<int> stars;
    std::variant<int, unsigned, long, long long, size_t, const char*, void*> arg;

    template <typename F>
    std::string Call(F&& print, const char* marker) const
    {
        std::string fmt =
            marker ? "[%" + std::string(marker) + conversion + "] %{public}d" : "[%" + std::string(conversion) + "] %d";
        return std::visit(
            [&, f = fmt.c_str()](auto value) {
                return stars.size() == 2   ? print(f, stars[0], stars[1], value, SENTINEL)
                       : stars.size() == 1 ? print(f, stars[0], value, SENTINEL)
                                           : print(f, value, SENTINEL);
            },
            arg);
    }
};

TEST(LogFormat, PublicAndShownConversionsPrintAsPrintfAndMaskedOnesStillConsumeTheirArguments)
{
    const Conversion cases[] = {
        {"u", {}, UINT_MAX},
        {"ld", {}, LONG_MIN},
        {"-22lld", {}, -9000000000LL},
        {"zu", {}, SIZE_MAX},
        {"s", {}, "bundle.name"},
        {"s", {}, static_cast<const char*>(nullptr)},
        {"c", {}, 'x'},
        {"#010x", {}, 0xbeef},
        {"p", {}, reinterpret_cast<void*>(uintptr_t{0x1234abcd})},
        {"*d", {-6}, 12},
        {".*d", {-1}, 42},
        {"*.*s", {8, 2}, "abcdef"},
        {"*lld", {25}, LLONG_MIN},
    };
    const std::string masked = "[<private>] " + std::to_string(SENTINEL);
    for (const auto& c : cases) {
        auto log = [](bool show) { return [show](const char* f, auto... a) { return FormatLog(show, f, a...); }; };
        auto viaPrintf = [](const char* f, auto... a) { return Printf(f, a...); };
        const std::string expected = c.Call(viaPrintf, nullptr);
        EXPECT_EQ(c.Call(log(false), "{public}"), expected) << c.conversion;
        EXPECT_EQ(c.Call(log(true), "{private}"), expected) << c.conversion << " shown";
        EXPECT_EQ(c.Call(log(false), "{private}"), masked) << c.conversion;
        EXPECT_EQ(c.Call(log(false), ""), masked) << c.conversion << " unmarked";
    }
}

TEST(LogFormat, MixedLinesKeepEveryArgumentInPlaceAndPercentEscapesAreLiteral)
{
    EXPECT_EQ(FormatLog(false, "%d%s%zu%p%{public}c", 1, "a", size_t{2}, nullptr, 'k'),
              "<private><private><private><private>k");
    EXPECT_EQ(FormatLog(false, "100%% of %{public}d", 7), "100% of 7");
    EXPECT_EQ(FormatLog(false, "%%{public}d"), "%{public}d");
    EXPECT_EQ(FormatLog(false, "%s%%%{public}s", "x", "y"), "<private>%y");
}

TEST(LogPrint, CaptureRecordsEveryFieldAndTheFilterDecidesOnlyStderr)
{
    struct Case {
        const char* level;    // KAVO_LOG_LEVEL; nullptr: unset
        const char* privacy;  // KAVO_LOG_PRIVATE; nullptr: unset
        Kavo::LogLevel printed;
        const char* tag;
        unsigned int domain;
        const char* stderrText;  // "" when filtered out
    };
    const Case cases[] = {
        {nullptr, nullptr, Kavo::LEVEL_INFO, "push", DOMAIN, ""},
        {nullptr, nullptr, Kavo::LEVEL_WARN, "push", DOMAIN, "WARN D005300/push: uid <private> of 7\n"},
        {"debug", "show", Kavo::LEVEL_DEBUG, "push", DOMAIN, "DEBUG D005300/push: uid 20010 of 7\n"},
        {"info", nullptr, Kavo::LEVEL_INFO, nullptr, DOMAIN, "INFO D005300/: uid <private> of 7\n"},
        {"info", nullptr, Kavo::LEVEL_DEBUG, "push", DOMAIN, ""},
        {"error", "SHOW", Kavo::LEVEL_WARN, "push", DOMAIN, ""},
        {"error", "1", Kavo::LEVEL_ERROR, "push", DOMAIN, "ERROR D005300/push: uid <private> of 7\n"},
        {"verbose", nullptr, Kavo::LEVEL_INFO, "push", DOMAIN, ""},
        {"verbose", nullptr, Kavo::LEVEL_WARN, "other", 0xD001234, "WARN D001234/other: uid <private> of 7\n"},
    };
    for (const auto& c : cases) {
        std::string name = std::string(c.level ? c.level : "-") + "/" + (c.privacy ? c.privacy : "-");
        ScopedEnv level("KAVO_LOG_LEVEL", c.level);
        ScopedEnv privacy("KAVO_LOG_PRIVATE", c.privacy);
        LogCapture capture;
        ::testing::internal::CaptureStderr();
        Kavo::LogPrint(Kavo::LOG_SOURCE_SERVICE, c.printed, c.domain, c.tag, "uid %d of %{public}d", 20010, 7);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), c.stderrText) << name;
        auto lines = capture.Lines();
        ASSERT_EQ(lines.size(), 1u) << name;
        EXPECT_EQ(lines[0].level, c.printed) << name;
        EXPECT_EQ(lines[0].domain, c.domain) << name;
        EXPECT_EQ(lines[0].tag, c.tag ? c.tag : "") << name;
        EXPECT_EQ(lines[0].text,
                  c.privacy && std::string(c.privacy) == "show" ? "uid 20010 of 7" : "uid <private> of 7")
            << name;
    }
}

TEST(LogCapture, NestedCapturesAndCapturesOnOtherThreadsSeeEveryLineOfTheirLifetime)
{
    auto print = [](int thread, int line) {
        Kavo::LogPrint(Kavo::LOG_SOURCE_SERVICE, Kavo::LEVEL_DEBUG, DOMAIN, "push", "thread %{public}d line %{public}d",
                       thread, line);
    };
    LogCapture outer;
    {
        LogCapture inner;
        print(4, 0);
        EXPECT_EQ(inner.Texts(), std::vector<std::string>{"thread 4 line 0"});
    }
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t) {
        workers.emplace_back([t, &print] {
            LogCapture own;
            for (int i = 0; i < 200; ++i) {
                print(t, i);
            }
            EXPECT_GE(own.Lines().size(), 200u);
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    auto texts = outer.Texts();
    EXPECT_EQ(texts.size(), 801u) << "the inner capture's line too";
    EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()).size(), 801u);
}

}  // namespace
