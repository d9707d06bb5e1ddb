#include "kavo/push/codec/hex_coder_convert.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Kavo::Push::HexCoderConvert;
using Kavo::Push::SecureString;

TEST(HexCoderConvertTest, EncodingIsUpperCaseAndDecodingPadsOddText)
{
    struct Case {
        const char* behaviour;
        std::string hex;
        std::string bytes;
        bool encodes;  // ByteStream2Hex(bytes) gives `hex` back
    };
    const Case cases[] = {
        {"0a ff is 0AFF", "0AFF", "\x0a\xff", true},
        {"lower case decodes", "0aff", "\x0a\xff", false},
        {"odd text is read with a leading zero", "AFF", "\x0a\xff", false},
        {"a single digit is one byte", "A", "\x0a", false},
        {"zero bytes are encoded, not dropped", "0001", std::string("\0\x01", 2), true},
        {"empty is empty both ways", "", "", true},
        {"non-hex characters give a fixed byte", "zz", "\x53", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        EXPECT_EQ(HexCoderConvert::HexStream2Byte(SecureString(c.hex)), c.bytes);
        if (c.encodes) {
            EXPECT_EQ(HexCoderConvert::ByteStream2Hex(SecureString(c.bytes)), c.hex);
        }
    }
}

}  // namespace
