#include "kavo/push/codec/push_base64_convert.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::SecureString;

using Reports = std::vector<std::pair<int, std::string>>;
constexpr int DATA_CONVERT_FAILED = 100002014;

TEST(PushBase64ConvertTest, KnownAnswersRoundTrip)
{
    struct Case {
        std::string bytes;
        std::string text;
    };
    const Case cases[] = {
        {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"}, {std::string("\0\xfb\xff", 3), "APv/"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(PushBase64Convert::Base64Encode(SecureString(c.bytes)), c.text);
        EXPECT_EQ(PushBase64Convert::Base64Decode(SecureString(c.text)), c.bytes);
    }
    for (size_t size : {100u, 65537u}) {
        SecureString bytes(size, '\x5c');
        SecureString text = PushBase64Convert::Base64Encode(bytes);
        EXPECT_EQ(text.size(), (size + 2) / 3 * 4) << "one line, no line breaks";
        EXPECT_EQ(PushBase64Convert::Base64Decode(text), bytes);
    }
}

// Failures are an empty result, one error line and one report of the same text. Decoding
// works on whole four-character groups of one line, as OpenSSL's no-newline mode does.
TEST(PushBase64ConvertTest, FailuresAreLoggedAndReported)
{
    const unsigned char byte = 'a';
    struct Case {
        const char* behaviour;
        std::function<SecureString()> convert;
        std::string result;
        const char* error;
    };
    auto decode = [](std::string text) { return [text] { return PushBase64Convert::Base64Decode(text); }; };
    const Case cases[] = {
        {"encoding a null pointer", [] { return PushBase64Convert::Base64Encode(nullptr, 3); }, "",
         "Base64Encode error: invalid input param"},
        {"encoding zero bytes", [&byte] { return PushBase64Convert::Base64Encode(&byte, 0); }, "",
         "Base64Encode error: invalid input param"},
        {"decoding empty text", decode(""), "", "Base64Decode error: invalid input param"},
        {"a line break inside a group", decode("YW\nJj"), "", "Base64Decode error: bio read fail"},
        {"a carriage return in the last group", decode("YWJ\r\n"), "", "Base64Decode error: bio read fail"},
        {"a line break after the last group is ignored", decode("YWJj\n"), "abc", nullptr},
        {"text shorter than one group", decode("YWJ"), "", "Base64Decode error: bio read fail"},
        {"an unfinished last group is dropped", decode("YWJjZA"), "abc", nullptr},
        {"a character outside the alphabet", decode("Y!Jj"), "", "Base64Decode error: bio read fail"},
        {"the URL-safe alphabet", decode("-_-_"), "", "Base64Decode error: bio read fail"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Kavo::LogCapture log;
        KavoTest::ReportRecorder reports;
        EXPECT_EQ(c.convert(), c.result);
        if (c.error == nullptr) {
            EXPECT_TRUE(log.Lines().empty());
            EXPECT_TRUE(reports.Reports().empty());
            continue;
        }
        ASSERT_EQ(log.Lines().size(), 1u);
        EXPECT_EQ(log.Lines()[0].level, Kavo::LOG_ERROR);
        EXPECT_EQ(log.Lines()[0].text, c.error);
        EXPECT_EQ(reports.Reports(), (Reports{{DATA_CONVERT_FAILED, c.error}}));
    }
}

}  // namespace
