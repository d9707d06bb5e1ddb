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

// Runs one fixed-width decoder with `out` preset to the sentinel and hands back the bits of
// `out` afterwards, so a failed read can be seen to leave it alone.
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

class ByteDecoderTest : public testing::Test {
protected:
    KavoTest::ScopedEnv showPrivate_{"KAVO_LOG_PRIVATE", "show"};
    Kavo::LogCapture log_;

    // A failure is one error line and a result of 1000900001 with the same text.
    void ExpectFailure(const PushBaseRsp& rsp, const std::string& text)
    {
        EXPECT_EQ(rsp.GetErr(), Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), text);
        auto lines = log_.Lines();
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].level, Kavo::LOG_ERROR);
        EXPECT_EQ(lines[0].text, text);
    }
};

TEST_F(ByteDecoderTest, FixedWidthReads)
{
    struct Case {
        const char* behaviour;
        Reader read;
        std::string data;
        size_t offset;
        uint64_t value;     // expected bits of `out` on success
        const char* error;  // expected failure text, or null
    };
    const Case cases[] = {
        {"uint32 at offset 0 of four bytes", Read(&ByteDecoder::DecodeAsUint32), "\x01\x02\x03\x04", 0, 0x01020304,
         nullptr},
        {"uint32 at offset 1 of four bytes is out of range", Read(&ByteDecoder::DecodeAsUint32), "\x01\x02\x03\x04",
         1, 0, "Cannot decode data(4) for out of range(1)"},
        {"uint16 of 01 02 is 258", Read(&ByteDecoder::DecodeAsUint16), "\x01\x02", 0, 258, nullptr},
        {"int16 of ff fe is -2", Read(&ByteDecoder::DecodeAsInt16), "\xff\xfe", 0, 0xFFFE, nullptr},
        {"int32 of 80 00 00 00 is the minimum", Read(&ByteDecoder::DecodeAsInt32), std::string("\x80\0\0\0", 4), 0,
         0x80000000, nullptr},
        {"uint64 reads unaligned at offset 3", Read(&ByteDecoder::DecodeAsUint64),
         "abc\x01\x02\x03\x04\x05\x06\x07\x08", 3, 0x0102030405060708ULL, nullptr},
        {"int64 of eight ff bytes is -1", Read(&ByteDecoder::DecodeAsInt64), std::string(8, '\xff'), 0, ~0ULL,
         nullptr},
        {"uint64 one byte short is out of range", Read(&ByteDecoder::DecodeAsUint64), std::string(7, 'x'), 0, 0,
         "Cannot decode data(7) for out of range(0)"},
        {"int64 reports the offset, not the width", Read(&ByteDecoder::DecodeAsInt64), std::string(9, 'x'), 2, 0,
         "Cannot decode data(9) for out of range(2)"},
        {"char reads the last byte", Read(&ByteDecoder::DecodeAsChar), "xyz", 2, 'z', nullptr},
        {"int8 of ff is -1", Read(&ByteDecoder::DecodeAsInt8), "\xff", 0, 0xFF, nullptr},
        {"char of empty data is out of range", Read(&ByteDecoder::DecodeAsChar), "", 0, 0,
         "Cannot decode data(0) for out of range(0)"},
        {"uint16 with the offset past the end", Read(&ByteDecoder::DecodeAsUint16), "ab", 5, 0,
         "Cannot decode data(2) for out of range(5)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        log_.Clear();
        uint64_t bits = 0;
        PushBaseRsp rsp = c.read(c.data, c.offset, bits);
        if (c.error == nullptr) {
            EXPECT_TRUE(rsp.Succeed());
            EXPECT_EQ(bits, c.value);
            EXPECT_TRUE(log_.Lines().empty());
        } else {
            ExpectFailure(rsp, c.error);
            EXPECT_EQ(bits & 0xFF, SENTINEL & 0xFF) << "out must stay untouched";
        }
    }
}

TEST_F(ByteDecoderTest, ByteRunsTakeTheLengthBeforeTheOffset)
{
    struct Case {
        const char* behaviour;
        std::string data;
        size_t length;
        size_t offset;
        std::string out;  // on success
        const char* error;
    };
    const Case cases[] = {
        {"length 3 at offset 2 yields the last three bytes", "abcde", 3, 2, "cde", nullptr},
        {"length 3 at offset 4 is out of range", "abcde", 3, 4, "", "Cannot decode data(5) for out of range(4)"},
        {"length 0 at the end yields nothing", "abcde", 0, 5, "", nullptr},
        {"length 0 past the end is out of range", "abcde", 0, 6, "", "Cannot decode data(5) for out of range(6)"},
        {"zero bytes are copied like any other", std::string("a\0\0b", 4), 2, 1, std::string(2, '\0'), nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        log_.Clear();
        std::string out = "previous";
        PushBaseRsp rsp = ByteDecoder::DecodeAsByte(out, c.data, c.length, c.offset);
        if (c.error == nullptr) {
            EXPECT_TRUE(rsp.Succeed());
            EXPECT_EQ(out, c.out);
        } else {
            ExpectFailure(rsp, c.error);
            EXPECT_EQ(out, "previous");
        }
    }
}

}  // namespace
