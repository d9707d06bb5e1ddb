#include "kavo/host/secure/bounded_memory.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

constexpr size_t AREA = 32;  // destination plus guard
constexpr size_t HUGE = Kavo::MAX_CHECKED_LENGTH + 1;
const char* const FILL = "(memset_s)";

TEST(BoundedMemory, FillAndFormatWriteOnlyWhatTheLimitsAllow)
{
    struct Case {
        const char* name;
        const char* arg;  // FILL: memset_s with 'z'; else the argument of a "%s" format (null: a null format)
        bool nullDest;
        size_t destMax;
        size_t count;
        int ret;
        std::string written;  // the area's bytes afterwards, before the untouched 'A's
    };
    const Case cases[] = {
        {"fill: null destination is refused", FILL, true, 16, 4, -1, ""},
        {"fill: zero size is refused", FILL, false, 0, 0, -1, ""},
        {"fill: destination past the largest size is refused", FILL, false, HUGE, 4, -1, ""},
        {"fill: count below size fills count bytes", FILL, false, 16, 5, Kavo::CHECKED_OK, "zzzzz"},
        {"fill: a count above the size fills the destination only", FILL, false, 8, SIZE_MAX, -1, "zzzzzzzz"},
        {"exact fit of count and buffer", "hello", false, 6, 5, 5, std::string("hello\0", 6)},
        {"count equal to buffer size leaves room for the zero", "hello", false, 6, 6, 5, std::string("hello\0", 6)},
        {"count one short truncates", "hello", false, 16, 4, -1, std::string("hell\0", 5)},
        {"buffer one short truncates", "hello", false, 5, 10, -1, std::string("hell\0", 5)},
        {"zero count keeps only the terminator", "x", false, 8, 0, -1, std::string(1, '\0')},
        {"empty result with zero count fits", "", false, 8, 0, 0, std::string(1, '\0')},
        {"null destination", "x", true, 8, 4, -1, ""},
        {"zero size writes nothing", "x", false, 0, 4, -1, ""},
        {"destination past the largest size writes nothing", "x", false, HUGE, 4, -1, ""},
        {"null format empties the destination", nullptr, false, 8, 4, -1, std::string(1, '\0')},
    };
    for (const auto& c : cases) {
        char area[AREA];
        std::memset(area, 'A', sizeof(area));
        char* dest = c.nullDest ? nullptr : area;
        int ret = c.arg == FILL      ? (Kavo::memset_s(dest, c.destMax, 'z', c.count) == Kavo::CHECKED_OK ? 0 : -1)
                  : c.arg == nullptr ? Kavo::snprintf_s(dest, c.destMax, c.count, nullptr)
                                     : Kavo::snprintf_s(dest, c.destMax, c.count, "%s", c.arg);
        EXPECT_EQ(ret, c.ret) << c.name;
        EXPECT_EQ(std::string(area, AREA), c.written + std::string(AREA - c.written.size(), 'A')) << c.name;
    }
}

}  // namespace
