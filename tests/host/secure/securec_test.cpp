// The bounds-checked fill and format: bad arguments, limits, truncation and exact fits, with a
// guard area after the destination that must never be written.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstring>
#include <string>

#include "kavo/host/secure/securec.h"

namespace {

constexpr size_t AREA = 32;  // destination plus guard
constexpr char UNTOUCHED = 'A';

class SecureMemsetTest : public ::testing::Test {};

TEST_F(SecureMemsetTest, FillsOnlyWhatTheLimitsAllow)
{
    struct Case {
        const char* name;
        bool nullDest;
        size_t destMax;
        size_t count;
        bool ok;
        size_t filled;  // bytes set to the fill value, from the start
    };
    const Case cases[] = {
        {"null destination is refused", true, 16, 4, false, 0},
        {"zero size is refused and writes nothing", false, 0, 0, false, 0},
        {"destination past the largest size is refused", false, Kavo::SECUREC_MEM_MAX_LEN + 1, 4, false, 0},
        {"zero count writes nothing", false, 16, 0, true, 0},
        {"count below size fills count bytes", false, 16, 5, true, 5},
        {"count equal to size fills everything", false, 16, 16, true, 16},
        {"count above size fills the destination only and fails", false, 16, 17, false, 16},
        {"huge count fills the destination only and fails", false, 8, SIZE_MAX, false, 8},
    };
    for (const auto& c : cases) {
        char area[AREA];
        std::memset(area, UNTOUCHED, sizeof(area));
        int ret = Kavo::memset_s(c.nullDest ? nullptr : area, c.destMax, 'z', c.count);
        EXPECT_EQ(ret == Kavo::EOK, c.ok) << c.name;
        for (size_t i = 0; i < AREA; ++i) {
            ASSERT_EQ(area[i], i < c.filled ? 'z' : UNTOUCHED) << c.name << " at byte " << i;
        }
    }
}

class SecureFormatTest : public ::testing::Test {
protected:
    static int Format(char* dest, size_t destMax, size_t count, const char* fmt, ...)
    {
        va_list args;
        va_start(args, fmt);
        int ret = Kavo::vsnprintf_s(dest, destMax, count, fmt, args);
        va_end(args);
        return ret;
    }
};

TEST_F(SecureFormatTest, WritesAtMostCountCharactersAndReportsTruncation)
{
    struct Case {
        const char* name;
        bool nullDest;
        size_t destMax;
        size_t count;
        const char* fmt;
        const char* arg;
        int ret;
        const char* text;  // the destination afterwards; nullptr: untouched
    };
    const Case cases[] = {
        {"exact fit of count and buffer", false, 6, 5, "%s", "hello", 5, "hello"},
        {"count larger than the text", false, 16, 10, "%s!", "hello", 6, "hello!"},
        {"count equal to buffer size still leaves room for the terminator", false, 6, 6, "%s", "hello", 5, "hello"},
        {"count one short truncates", false, 16, 4, "%s", "hello", -1, "hell"},
        {"buffer one short truncates", false, 5, 10, "%s", "hello", -1, "hell"},
        {"zero count keeps only the terminator", false, 8, 0, "%s", "x", -1, ""},
        {"empty result with zero count fits", false, 8, 0, "%s", "", 0, ""},
        {"empty result", false, 8, 4, "%s", "", 0, ""},
        {"null destination", true, 8, 4, "%s", "x", -1, nullptr},
        {"zero size writes nothing", false, 0, 4, "%s", "x", -1, nullptr},
        {"destination past the largest size writes nothing", false, Kavo::SECUREC_MEM_MAX_LEN + 1, 4, "%s", "x", -1,
         nullptr},
        {"null format empties the destination", false, 8, 4, nullptr, "x", -1, ""},
    };
    for (const auto& c : cases) {
        char area[AREA];
        std::memset(area, UNTOUCHED, sizeof(area));
        int ret = Format(c.nullDest ? nullptr : area, c.destMax, c.count, c.fmt, c.arg);
        EXPECT_EQ(ret, c.ret) << c.name;
        size_t used = 0;
        if (c.text != nullptr) {
            EXPECT_STREQ(area, c.text) << c.name;
            used = std::strlen(c.text) + 1;
        }
        for (size_t i = used; i < AREA; ++i) {
            ASSERT_EQ(area[i], UNTOUCHED) << c.name << " wrote byte " << i;
        }
    }
}

TEST_F(SecureFormatTest, TheVariadicFormMatchesTheListForm)
{
    char buffer[8];
    EXPECT_EQ(Kavo::snprintf_s(buffer, sizeof(buffer), sizeof(buffer) - 1, "%d-%s", 42, "ab"), 5);
    EXPECT_STREQ(buffer, "42-ab");
    EXPECT_EQ(Kavo::snprintf_s(buffer, sizeof(buffer), sizeof(buffer) - 1, "%d-%s", 42, "abcdef"), -1);
    EXPECT_STREQ(buffer, "42-abcd");
}

}  // namespace
