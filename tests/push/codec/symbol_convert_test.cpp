#include "kavo/push/codec/symbol_convert.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using Kavo::Push::SymbolConvert;

// The in-memory bytes of a converted value, to compare with the stream form.
template <typename T>
std::string MemoryBytes(T value)
{
    return std::string(reinterpret_cast<const char*>(&value), sizeof(value));
}

TEST(SymbolConvertTest, StreamsAreBigEndianAndMatchTheSwappedValue)
{
    struct Case {
        const char* behaviour;
        std::string stream;
        std::string swapped;
        std::string expected;
    };
    const Case cases[] = {
        {"one byte is itself", SymbolConvert::Host2NetStreamUint8(0xAB), MemoryBytes(uint8_t{0xAB}), "\xAB"},
        {"16 bits most significant first", SymbolConvert::Host2NetStreamUint16(0x0102),
         MemoryBytes(SymbolConvert::Host2NetUint16(0x0102)), "\x01\x02"},
        {"16909060 is 01 02 03 04", SymbolConvert::Host2NetStreamUint32(16909060),
         MemoryBytes(SymbolConvert::Host2NetUint32(16909060)), "\x01\x02\x03\x04"},
        {"64 bits with the halves exchanged", SymbolConvert::Host2NetStreamUint64(0x0102030405060708ULL),
         MemoryBytes(SymbolConvert::Host2NetUint64(0x0102030405060708ULL)), "\x01\x02\x03\x04\x05\x06\x07\x08"},
        {"zero stays eight zero bytes", SymbolConvert::Host2NetStreamUint64(0),
         MemoryBytes(SymbolConvert::Host2NetUint64(0)), std::string(8, '\0')},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        EXPECT_EQ(c.stream, c.expected);
        EXPECT_EQ(c.swapped, c.expected);
    }
}

TEST(SymbolConvertTest, ConversionsRoundTrip)
{
    for (uint64_t value : {0ULL, 1ULL, 0x0102030405060708ULL, 0xFFFFFFFF00000000ULL, ~0ULL}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(SymbolConvert::Net2HostUint64(SymbolConvert::Host2NetUint64(value)), value);
        auto low = static_cast<uint32_t>(value);
        EXPECT_EQ(SymbolConvert::Net2HostUint32(SymbolConvert::Host2NetUint32(low)), low);
        auto small = static_cast<uint16_t>(value);
        EXPECT_EQ(SymbolConvert::Net2HostUint16(SymbolConvert::Host2NetUint16(small)), small);
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
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        EXPECT_EQ(SymbolConvert::Hex2Byte(c.high, c.low), c.byte);
    }
    EXPECT_EQ(SymbolConvert::Byte2Hex(0x0A), "0A");
    EXPECT_EQ(SymbolConvert::Byte2Hex(0xFF), "FF");
    EXPECT_EQ(SymbolConvert::Byte2Hex(0x00), "00");
    for (int byte = 0; byte < 256; ++byte) {
        auto hex = SymbolConvert::Byte2Hex(static_cast<uint8_t>(byte));
        ASSERT_EQ(SymbolConvert::Hex2Byte(hex[0], hex[1]), byte);
    }
}

TEST(SymbolConvertTest, ToUpperTouchesAsciiLettersOnly)
{
    struct Case {
        char in;
        char out;
    };
    const Case cases[] = {{'a', 'A'}, {'z', 'Z'}, {'Q', 'Q'}, {'`', '`'}, {'{', '{'}, {'5', '5'}, {'\xE1', '\xE1'}};
    for (const Case& c : cases) {
        EXPECT_EQ(SymbolConvert::ToUpper(c.in), c.out) << static_cast<int>(c.in);
    }
}

}  // namespace
