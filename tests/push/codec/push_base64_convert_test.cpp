#include "kavo/push/codec/push_base64_convert.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::SecureString;

constexpr int DATA_CONVERT_FAILED = 100002014;

class PushBase64ConvertTest : public testing::Test {
protected:
    Kavo::LogCapture log_;
    KavoTest::ReportRecorder reports_;

    // A failure is an empty result, one error line and one report, all with the same text.
    void ExpectFailure(const SecureString& result, const std::string& text)
    {
        EXPECT_TRUE(result.empty());
        auto lines = log_.Lines();
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].level, Kavo::LOG_ERROR);
        EXPECT_EQ(lines[0].text, text);
        EXPECT_EQ(reports_.Reports(), (std::vector<std::pair<int, std::string>>{{DATA_CONVERT_FAILED, text}}));
    }

    void ExpectQuiet()
    {
        EXPECT_TRUE(log_.Lines().empty());
        EXPECT_TRUE(reports_.Reports().empty());
    }
};

TEST_F(PushBase64ConvertTest, KnownAnswersEncodeAndDecode)
{
    struct Case {
        const char* behaviour;
        std::string bytes;
        std::string text;
    };
    const Case cases[] = {
        {"RFC 4648: f", "f", "Zg=="},
        {"RFC 4648: fo", "fo", "Zm8="},
        {"RFC 4648: foo", "foo", "Zm9v"},
        {"RFC 4648: foob", "foob", "Zm9vYg=="},
        {"RFC 4648: fooba", "fooba", "Zm9vYmE="},
        {"RFC 4648: foobar", "foobar", "Zm9vYmFy"},
        {"abc", "abc", "YWJj"},
        {"zero bytes and the top of the alphabet", std::string("\0\xfb\xff", 3), "APv/"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        EXPECT_EQ(PushBase64Convert::Base64Encode(SecureString(c.bytes)), c.text);
        EXPECT_EQ(PushBase64Convert::Base64Decode(SecureString(c.text)), c.bytes);
    }
    ExpectQuiet();
}

TEST_F(PushBase64ConvertTest, LongInputStaysOnOneLineAndRoundTrips)
{
    for (size_t size : {100u, 4096u, 65537u}) {
        SCOPED_TRACE(size);
        SecureString bytes;
        for (size_t i = 0; i < size; ++i) {
            bytes.push_back(static_cast<char>(i * 7 + 3));
        }
        SecureString text = PushBase64Convert::Base64Encode(bytes);
        EXPECT_EQ(text.size(), (size + 2) / 3 * 4);
        EXPECT_EQ(text.find('\n'), std::string::npos);
        EXPECT_EQ(PushBase64Convert::Base64Decode(text), bytes);
    }
    ExpectQuiet();
}

TEST_F(PushBase64ConvertTest, RefusedInputIsLoggedAndReported)
{
    const unsigned char byte = 'a';
    struct Case {
        const char* behaviour;
        SecureString (*convert)(const unsigned char*);
        const char* text;
    };
    const Case cases[] = {
        {"encoding a null pointer", [](const unsigned char*) { return PushBase64Convert::Base64Encode(nullptr, 3); },
         "Base64Encode error: invalid input param"},
        {"encoding zero bytes", [](const unsigned char* b) { return PushBase64Convert::Base64Encode(b, 0); },
         "Base64Encode error: invalid input param"},
        {"encoding an empty string",
         [](const unsigned char*) { return PushBase64Convert::Base64Encode(SecureString()); },
         "Base64Encode error: invalid input param"},
        {"decoding an empty text",
         [](const unsigned char*) { return PushBase64Convert::Base64Decode(SecureString()); },
         "Base64Decode error: invalid input param"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        log_.Clear();
        reports_.Clear();
        ExpectFailure(c.convert(&byte), c.text);
    }
}

// The decoder works on whole four-character groups of a single line, as OpenSSL's
// no-newline mode does.
TEST_F(PushBase64ConvertTest, MalformedTextFollowsSingleLineDecoding)
{
    struct Case {
        const char* behaviour;
        std::string text;
        std::string bytes;  // empty: the read fails
    };
    const Case cases[] = {
        {"a line break inside a group fails", "YW\nJj", ""},
        {"a line break before the text fails", "\nYWJj", ""},
        {"a carriage return inside the last group fails", "YWJ\r\n", ""},
        {"a line break after the last group is ignored", "YWJj\n", "abc"},
        {"text shorter than one group fails", "YWJ", ""},
        {"an unfinished last group is dropped", "YWJjZA", "abc"},
        {"a character outside the alphabet fails", "Y!Jj", ""},
        {"the URL-safe alphabet is not accepted", "-_-_", ""},
        {"a space between groups fails", "YWJj YWJj", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        log_.Clear();
        reports_.Clear();
        SecureString bytes = PushBase64Convert::Base64Decode(SecureString(c.text));
        if (c.bytes.empty()) {
            ExpectFailure(bytes, "Base64Decode error: bio read fail");
        } else {
            EXPECT_EQ(bytes, c.bytes);
            ExpectQuiet();
        }
    }
}

}  // namespace
