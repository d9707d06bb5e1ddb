#include "kavo/push/codec/type_convertor.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>
#include <utility>

namespace {

using namespace Kavo::Push;

TEST(TypeConvertorTest, TextIsReadAsFarAsItFits)
{
    using Values = std::tuple<int32_t, int64_t, uint8_t, bool>;  // by Int32, Int64, Uint8 and Bool
    const std::pair<const char*, Values> cases[] = {
        {"12abc", {12, 12, 12, true}},
        {"true", {0, 0, 0, false}},
        {"300", {300, 300, 44, true}},
        {"2147483648", {INT32_MAX, 2147483648LL, 255, true}},
    };
    for (const auto& [text, values] : cases) {
        Values got(TypeConvertor::StringConvert2Int32(text), TypeConvertor::StringConvert2Int64(text),
                   TypeConvertor::StringConvert2Uint8(text), TypeConvertor::StringConvert2Bool(text));
        EXPECT_EQ(got, values) << text;
    }
    EXPECT_EQ(TypeConvertor::Uint32Convert2Hex(0xAB), "ab");
}

}  // namespace
