#include "kavo/push/codec/push_base64_convert.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using Reports = std::vector<std::pair<int, std::string>>;
using Texts = std::vector<std::string>;

// A failure is an empty result, one error line and one report of the same text. What is
// decoded or encoded is held to the OpenSSL filter chain by the differential fuzzer.
TEST(Base64Test, FailuresAreLoggedAndReported)
{
    auto decode = [](std::string text) { return [text] { return PushBase64Convert::Base64Decode(text); }; };
    auto encode = [](const char* data, unsigned int size) {
        return [=] { return PushBase64Convert::Base64Encode(reinterpret_cast<const unsigned char*>(data), size); };
    };
    struct Case {
        const char* behaviour;
        std::function<SecureString()> convert;
        const char* error;
    };
    const Case cases[] = {
        {"encoding a null pointer", encode(nullptr, 3), "Base64Encode error: invalid input param"},
        {"decoding empty text", decode(""), "Base64Decode error: invalid input param"},
        {"a character outside the alphabet", decode("Y!Jj"), "Base64Decode error: bio read fail"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Kavo::LogCapture log;
        KavoTest::ReportRecorder reports;
        EXPECT_EQ(c.convert(), "");
        EXPECT_EQ(log.Texts(), Texts{c.error});
        EXPECT_EQ(log.Lines().at(0).level, Kavo::LEVEL_ERROR);
        EXPECT_EQ(reports.Reports(), (Reports{{100002014, c.error}}));
    }
}

}  // namespace
