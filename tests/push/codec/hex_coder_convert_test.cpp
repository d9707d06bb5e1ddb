#include "kavo/push/codec/hex_coder_convert.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Kavo::Push::HexCoderConvert;
using Kavo::Push::SecureString;

TEST(HexCoderConvertTest, EncodesUpperCaseWithoutSeparators)
{
    struct Case {
        const char* behaviour;
        std::string bytes;
        std::string hex;
    };
    const Case cases[] = {
        {"0a ff gives 0AFF", "\x0a\xff", "0AFF"},
        {"empty input gives empty text", "", ""},
        {"zero bytes are encoded, not dropped", std::string("\0\x01", 2), "0001"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        EXPECT_EQ(HexCoderConvert::ByteStream2Hex(SecureString(c.bytes)), c.hex);
    }
}

TEST(HexCoderConvertTest, DecodesPairsAfterPaddingOddText)
{
    struct Case {
        const char* behaviour;
        std::string hex;
        std::string bytes;
    };
    const Case cases[] = {
        {"lower case pairs", "0aff", "\x0a\xff"},
        {"odd text is read with a leading zero", "AFF", "\x0a\xff"},
        {"a single digit is one byte", "A", "\x0a"},
        {"a single zero digit is a zero byte", "0", std::string(1, '\0')},
        {"empty text gives nothing", "", ""},
        {"non-hex characters give a fixed byte", "zz", "\x53"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        EXPECT_EQ(HexCoderConvert::HexStream2Byte(SecureString(c.hex)), c.bytes);
    }
}

TEST(HexCoderConvertTest, EveryByteRoundTrips)
{
    SecureString all;
    for (int byte = 0; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    SecureString hex = HexCoderConvert::ByteStream2Hex(all);
    EXPECT_EQ(hex.size(), 512u);
    EXPECT_EQ(HexCoderConvert::HexStream2Byte(hex), all);
}

}  // namespace
