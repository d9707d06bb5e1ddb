#include "kavo/push/codec/hex_coder_convert.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Kavo::Push;

// Hex text in any case and the upper-case encoding are held to each other by the hex fuzzer;
// these rows pin Hex2Byte's fixed answers for characters that are not hex digits.
TEST(HexTest, NonHexDigitsGiveFixedValues)
{
    struct Case {
        const char* behaviour;
        std::string hex, bytes;
    };
    const Case cases[] = {
        {"a non-hex high digit keeps its low four bits", "G1", "\x01"},
        {"a non-hex low digit is added whole", "1G", "\x20"},
        {"'z' counts as 35 on both sides", "zz", "\x53"},
        {"a byte above 0x7f counts from 'A', as where char is unsigned", "\xe1\x30", "\xa0"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(HexCoderConvert::HexStream2Byte(c.hex), c.bytes) << c.behaviour;
    }
}

}  // namespace
