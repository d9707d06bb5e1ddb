#include "kavo/push/codec/type_convertor.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using Kavo::Push::TypeConvertor;

TEST(TypeConvertorTest, TextToIntegers)
{
    struct Case {
        const char* text;
        int32_t int32;
        int64_t int64;
        uint8_t uint8;
    };
    const Case cases[] = {
        {"", 0, 0, 0},
        {"12abc", 12, 12, 12},
        {"abc", 0, 0, 0},
        {" 7", 7, 7, 7},
        {"-5", -5, -5, 251},
        {"300", 300, 300, 44},
        {"0x1F", 0, 0, 0},
        {"2147483648", std::numeric_limits<int32_t>::max(), 2147483648LL, 255},
        {"-9223372036854775809", std::numeric_limits<int32_t>::min(), std::numeric_limits<int64_t>::min(), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(TypeConvertor::StringConvert2Int32(c.text), c.int32);
        EXPECT_EQ(TypeConvertor::StringConvert2Int64(c.text), c.int64);
        EXPECT_EQ(TypeConvertor::StringConvert2Uint8(c.text), c.uint8);
    }
}

TEST(TypeConvertorTest, TextToBoolReadsAnInteger)
{
    struct Case {
        const char* text;
        bool value;
    };
    const Case cases[] = {{"1", true}, {"0", false}, {"true", false}, {"", false}, {"2", true}, {" 1x", true}};
    for (const Case& c : cases) {
        EXPECT_EQ(TypeConvertor::StringConvert2Bool(c.text), c.value) << c.text;
    }
}

TEST(TypeConvertorTest, Uint32ToLowerCaseHex)
{
    struct Case {
        uint32_t value;
        const char* hex;
    };
    const Case cases[] = {{255, "ff"}, {0, "0"}, {11259375, "abcdef"}, {0xFFFFFFFFU, "ffffffff"}, {16, "10"}};
    for (const Case& c : cases) {
        EXPECT_EQ(TypeConvertor::Uint32Convert2Hex(c.value), c.hex) << c.value;
    }
}

}  // namespace
