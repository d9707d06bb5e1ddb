#include "kavo/push/codec/byte_decoder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>

#include "tests/support/test_support.h"

namespace {

using Kavo::Push::ByteDecoder;
using Kavo::Push::PushBaseRsp;

constexpr uint64_t SENTINEL = 0x5A5A5A5A5A5A5A5AULL;

// Runs one decoder with `out` preset to the sentinel and hands back the bits of `out`.
using Reader = std::function<PushBaseRsp(const std::string&, size_t, uint64_t&)>;

template <typename T>
Reader Read(PushBaseRsp (*decode)(T&, const std::string&, const size_t&))
{
    return [decode](const std::string& data, size_t offset, uint64_t& bits) {
        auto out = static_cast<T>(SENTINEL);
        PushBaseRsp rsp = decode(out, data, offset);
        bits = static_cast<std::make_unsigned_t<T>>(out);
        return rsp;
    };
}

Reader ReadRun(size_t length)
{
    return [length](const std::string& data, size_t offset, uint64_t& bits) {
        std::string out = "previous";
        PushBaseRsp rsp = ByteDecoder::DecodeAsByte(out, data, length, offset);
        bits = std::hash<std::string>()(out);
        return rsp;
    };
}

uint64_t HashOf(const std::string& s)
{
    return std::hash<std::string>()(s);
}

TEST(ByteDecoderTest, ReadsCheckTheRangeFirstAndLeaveOutAloneOnFailure)
{
    struct Case {
        const char* behaviour;
        Reader read;
        std::string data;
        size_t offset;
        uint64_t value;     // bits of `out` afterwards
        const char* error;  // failure text, or null
    };
    const uint64_t untouched = SENTINEL;
    const Case cases[] = {
        {"uint32 at offset 0", Read(&ByteDecoder::DecodeAsUint32), "\x01\x02\x03\x04", 0, 0x01020304, nullptr},
        {"uint32 at offset 1 of four bytes", Read(&ByteDecoder::DecodeAsUint32), "\x01\x02\x03\x04", 1,
         untouched & 0xFFFFFFFF, "Cannot decode data(4) for out of range(1)"},
        {"uint16 of 01 02 is 258", Read(&ByteDecoder::DecodeAsUint16), "\x01\x02", 0, 258, nullptr},
        {"int16 of ff fe is -2", Read(&ByteDecoder::DecodeAsInt16), "\xff\xfe", 0, 0xFFFE, nullptr},
        {"int32 of 80 00 00 00", Read(&ByteDecoder::DecodeAsInt32), std::string("\x80\0\0\0", 4), 0, 0x80000000,
         nullptr},
        {"uint64 unaligned at offset 3", Read(&ByteDecoder::DecodeAsUint64), "abc\x01\x02\x03\x04\x05\x06\x07\x08", 3,
         0x0102030405060708ULL, nullptr},
        {"int64 one byte short reports the offset", Read(&ByteDecoder::DecodeAsInt64), std::string(9, 'x'), 2,
         untouched, "Cannot decode data(9) for out of range(2)"},
        {"char reads the last byte", Read(&ByteDecoder::DecodeAsChar), "xyz", 2, 'z', nullptr},
        {"int8 of empty data", Read(&ByteDecoder::DecodeAsInt8), "", 0, 0x5A,
         "Cannot decode data(0) for out of range(0)"},
        {"run of 3 at offset 2 is the last three bytes", ReadRun(3), "abcde", 2, HashOf("cde"), nullptr},
        {"run of 3 at offset 4", ReadRun(3), "abcde", 4, HashOf("previous"),
         "Cannot decode data(5) for out of range(4)"},
        {"run of 0 at the end is empty", ReadRun(0), "abcde", 5, HashOf(""), nullptr},
        {"run of 0 past the end", ReadRun(0), "abcde", 6, HashOf("previous"),
         "Cannot decode data(5) for out of range(6)"},
    };
    KavoTest::ScopedEnv showPrivate("KAVO_LOG_PRIVATE", "show");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Kavo::LogCapture log;
        uint64_t bits = 0;
        PushBaseRsp rsp = c.read(c.data, c.offset, bits);
        EXPECT_EQ(bits, c.value);
        EXPECT_EQ(rsp.Succeed(), c.error == nullptr);
        if (c.error != nullptr) {
            EXPECT_EQ(rsp.GetErr(), Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
            EXPECT_EQ(rsp.GetErrDescription(), c.error);
            ASSERT_EQ(log.Lines().size(), 1u);
            EXPECT_EQ(log.Lines()[0].level, Kavo::LOG_ERROR);
            EXPECT_EQ(log.Lines()[0].text, c.error);
        } else {
            EXPECT_TRUE(log.Lines().empty());
        }
    }
}

}  // namespace
