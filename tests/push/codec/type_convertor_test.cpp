#include "kavo/push/codec/type_convertor.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using Kavo::Push::TypeConvertor;

TEST(TypeConvertorTest, TextIsReadAsFarAsItFits)
{
    struct Case {
        const char* text;
        int32_t int32;
        int64_t int64;
        uint8_t uint8;
        bool boolean;
    };
    const Case cases[] = {
        {"", 0, 0, 0, false},
        {"12abc", 12, 12, 12, true},
        {"abc", 0, 0, 0, false},
        {" 7", 7, 7, 7, true},
        {"1", 1, 1, 1, true},
        {"true", 0, 0, 0, false},
        {"-5", -5, -5, 251, true},
        {"300", 300, 300, 44, true},
        {"0x1F", 0, 0, 0, false},
        {"2147483648", std::numeric_limits<int32_t>::max(), 2147483648LL, 255, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(TypeConvertor::StringConvert2Int32(c.text), c.int32);
        EXPECT_EQ(TypeConvertor::StringConvert2Int64(c.text), c.int64);
        EXPECT_EQ(TypeConvertor::StringConvert2Uint8(c.text), c.uint8);
        EXPECT_EQ(TypeConvertor::StringConvert2Bool(c.text), c.boolean);
    }
    EXPECT_EQ(TypeConvertor::Uint32Convert2Hex(255), "ff");
    EXPECT_EQ(TypeConvertor::Uint32Convert2Hex(0), "0");
    EXPECT_EQ(TypeConvertor::Uint32Convert2Hex(11259375), "abcdef");
}

}  // namespace
