#include "kavo/push/codec/byte_decoder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using Texts = std::vector<std::string>;

// Values, bounds and the untouched `out` are held to a byte-by-byte reading by the byte decoder
// fuzzer; these rows pin the failure's text, log line and the two numbers it reports.
TEST(ByteDecoderTest, FailuresReportTheSizeAndTheOffset)
{
    struct Case {
        const char* behaviour;
        std::string data;
        size_t width, offset;  // width 4 or 8 reads an integer; any other is the length of a run
        const char* error;
    };
    const Case cases[] = {
        {"a fixed-width read a byte short", "123456789", 8, 2, "Cannot decode data(9) for out of range(2)"},
        {"an offset that wraps past the end", "abcd", 4, SIZE_MAX,
         "Cannot decode data(4) for out of range(18446744073709551615)"},
        {"a run past the end, the length before the offset", "abcde", 3, 4,
         "Cannot decode data(5) for out of range(4)"},
        {"a run whose length wraps past the end", "abcde", SIZE_MAX, 1, "Cannot decode data(5) for out of range(1)"},
    };
    KavoTest::ScopedEnv showPrivate("KAVO_LOG_PRIVATE", "show");
    for (const Case& c : cases) {
        Kavo::LogCapture log;
        int64_t wide = 0;
        uint32_t narrow = 0;
        std::string run;
        PushBaseRsp rsp = c.width == 8   ? ByteDecoder::DecodeAsInt64(wide, c.data, c.offset)
                          : c.width == 4 ? ByteDecoder::DecodeAsUint32(narrow, c.data, c.offset)
                                         : ByteDecoder::DecodeAsByte(run, c.data, c.width, c.offset);
        EXPECT_EQ(rsp.GetErr(), PUSH_ERR_SYSTEM_INTERNAL) << c.behaviour;
        EXPECT_EQ(rsp.GetErrDescription(), c.error) << c.behaviour;
        EXPECT_EQ(log.Texts(), Texts{c.error}) << c.behaviour;
        EXPECT_EQ(log.Lines().at(0).level, Kavo::LEVEL_ERROR) << c.behaviour;
    }
}

}  // namespace
