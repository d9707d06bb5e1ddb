#include "kavo/push/codec/symbol_convert.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Kavo::Push::SymbolConvert;

// The in-memory bytes of a converted value, to compare with the stream form.
template <typename T>
std::string MemoryBytes(T value)
{
    return std::string(reinterpret_cast<const char*>(&value), sizeof(value));
}

TEST(SymbolConvertTest, StreamsAreBigEndianAndMatchTheConvertedValue)
{
    const uint64_t wide = 0x0102030405060708ULL;
    EXPECT_EQ(SymbolConvert::Host2NetStreamUint8(0xAB), "\xAB");
    EXPECT_EQ(SymbolConvert::Host2NetStreamUint16(0x0102), "\x01\x02");
    EXPECT_EQ(SymbolConvert::Host2NetStreamUint32(16909060), "\x01\x02\x03\x04");
    EXPECT_EQ(SymbolConvert::Host2NetStreamUint64(wide), "\x01\x02\x03\x04\x05\x06\x07\x08");
    EXPECT_EQ(MemoryBytes(SymbolConvert::Host2NetUint16(0x0102)), SymbolConvert::Host2NetStreamUint16(0x0102));
    EXPECT_EQ(MemoryBytes(SymbolConvert::Host2NetUint32(16909060)), SymbolConvert::Host2NetStreamUint32(16909060));
    EXPECT_EQ(MemoryBytes(SymbolConvert::Host2NetUint64(wide)), SymbolConvert::Host2NetStreamUint64(wide));
    for (uint64_t value : {uint64_t{0}, wide, uint64_t{0xFFFFFFFF00000000ULL}, ~uint64_t{0}}) {
        EXPECT_EQ(SymbolConvert::Net2HostUint64(SymbolConvert::Host2NetUint64(value)), value);
    }
}

TEST(SymbolConvertTest, HexDigits)
{
    struct Case {
        const char* behaviour;
        char high;
        char low;
        uint8_t byte;
    };
    const Case cases[] = {
        {"digits", '0', '9', 0x09},
        {"lower case letters", 'a', 'f', 0xAF},
        {"mixed case", 'F', 'a', 0xFA},
        {"a non-hex high digit keeps its low four bits", 'G', '1', 0x01},
        {"a non-hex low digit is added whole", '1', 'G', 0x20},
        {"'z' counts as 35 on both sides", 'z', 'z', 0x53},
        {"punctuation below ':' counts from '0'", '/', '0', 0xF0},
        {"a byte above 0x7f wraps in eight bits", '\xE1', '0', 0x10},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(SymbolConvert::Hex2Byte(c.high, c.low), c.byte) << c.behaviour;
    }
    EXPECT_EQ(SymbolConvert::Byte2Hex(0x0A), "0A");
    EXPECT_EQ(SymbolConvert::Byte2Hex(0xFF), "FF");
    for (int byte = 0; byte < 256; ++byte) {
        auto hex = SymbolConvert::Byte2Hex(static_cast<uint8_t>(byte));
        ASSERT_EQ(SymbolConvert::Hex2Byte(hex[0], hex[1]), byte);
    }
}

}  // namespace
