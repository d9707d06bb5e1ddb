#include "kavo/push/codec/symbol_convert.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using namespace Kavo::Push;

TEST(SymbolConvertTest, Host2NetPutsTheMostSignificantByteFirst)
{
    const uint64_t net = SymbolConvert::Host2NetUint64(0x0102030405060708ULL);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&net), 8), "\x01\x02\x03\x04\x05\x06\x07\x08");
    EXPECT_EQ(SymbolConvert::Host2NetStreamUint64(0x0102030405060708ULL), "\x01\x02\x03\x04\x05\x06\x07\x08");
}

}  // namespace
