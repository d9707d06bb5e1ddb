#include "kavo/push/json/json_utils.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kavo/host/log/log.h"

namespace {

using Kavo::Push::JsonUtils;
using Kavo::Push::PushBaseRsp;

// What jsoncpp itself says about a text, to hold the library's message against.
std::string JsoncppErrors(const std::string& text)
{
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errs;
    try {
        reader->parse(text.data(), text.data() + text.size(), &root, &errs);
    } catch (const std::exception& e) {
        errs = e.what();
    }
    return errs;
}

struct ParseCase {
    const char* name;
    std::string text;
    bool ok;
    const char* member;  // a member the parsed root must hold, or null
};

TEST(JsonTextTest, Str2JsonParsesWholeTextsAndCarriesTheParserErrorOtherwise)
{
    const ParseCase cases[] = {
        {"a one-member object parses", R"({"ttl": 86400})", true, "ttl"},
        {"a bare scalar parses", "42", true, nullptr},
        {"a text cut inside an object fails", R"({"ttl": 86400)", false, nullptr},
        {"an empty text fails", "", false, nullptr},
        {"a missing colon fails", R"({"ttl" 1})", false, nullptr},
        {"an unterminated string fails", R"({"a": "b)", false, nullptr},
        {"nesting deeper than the parser allows fails like any error", std::string(5000, '['), false, nullptr},
    };
    for (const ParseCase& c : cases) {
        SCOPED_TRACE(c.name);
        Kavo::LogCapture cap;
        Json::Value root("untouched");
        PushBaseRsp rsp = JsonUtils::Str2Json(c.text, root);
        EXPECT_EQ(rsp.Succeed(), c.ok);
        if (c.ok) {
            EXPECT_TRUE(cap.Lines().empty());
            if (c.member != nullptr) {
                EXPECT_TRUE(root.isMember(c.member));
            }
            continue;
        }
        EXPECT_EQ(rsp.GetErr(), Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), "json parse error, ret: 0, errs: " + JsoncppErrors(c.text));
        EXPECT_NE(JsoncppErrors(c.text), "");
        EXPECT_EQ(root, Json::Value("untouched"));
        ASSERT_EQ(cap.Lines().size(), 1u);
        EXPECT_EQ(cap.Lines()[0].level, Kavo::LOG_WARN);
        EXPECT_EQ(cap.Lines()[0].text, "json parse error");
    }
}

struct WriteCase {
    const char* name;
    bool compact;
    std::string expected;
};

TEST(JsonTextTest, Json2StrFormsDifferOnlyInIndentation)
{
    Json::Value root;
    root["name"] = "Zoë 推送";
    root["list"].append(1);
    const WriteCase cases[] = {
        {"the one-result form is compact, on one line, in UTF-8", true,
         "{\"list\":[1],\"name\":\"Zo\xC3\xAB \xE6\x8E\xA8\xE9\x80\x81\"}"},
        {"the two-argument form keeps the default indentation, in UTF-8", false,
         "{\n\t\"list\" : \n\t[\n\t\t1\n\t],\n\t\"name\" : \"Zo\xC3\xAB \xE6\x8E\xA8\xE9\x80\x81\"\n}"},
    };
    for (const WriteCase& c : cases) {
        SCOPED_TRACE(c.name);
        std::string text = "stale";
        if (c.compact) {
            text = JsonUtils::Json2Str(root);
        } else {
            JsonUtils::Json2Str(root, text);
        }
        EXPECT_EQ(text, c.expected);
        Json::Value back;
        ASSERT_TRUE(JsonUtils::Str2Json(text, back).Succeed());
        EXPECT_EQ(back, root);
    }
}

TEST(JsonTextTest, CommentsOfAParsedTextAreWrittenBackByBothForms)
{
    Json::Value root;
    ASSERT_TRUE(JsonUtils::Str2Json("// pushed by the console\n{\"k\": /* seconds */ 1}", root).Succeed());
    std::string indented;
    JsonUtils::Json2Str(root, indented);
    const std::string compact = JsonUtils::Json2Str(root);
    EXPECT_EQ(compact.find("// pushed by the console"), 0u) << "the writer's default comment style holds";
    EXPECT_NE(indented.find("// pushed by the console"), std::string::npos);
    Json::Value back;
    ASSERT_TRUE(JsonUtils::Str2Json(indented, back).Succeed()) << indented;
    EXPECT_EQ(back, root);
}

enum class Reader { INT, INT_NO_DEFAULT, INT64, UINT8, UINT, STRING, STRING_NO_DEFAULT };

// Runs one typed read with a distinctive default (7, or "dflt") over a stale value, and
// prints what it gave.
std::string Read(Reader reader, const Json::Value& root, const std::string& key)
{
    int i = -99;
    long l = -99;
    unsigned char u8 = 99;
    unsigned int u = 99;
    std::string s = "stale";
    switch (reader) {
        case Reader::INT: JsonUtils::ParseInt(root, key, i, 7); return std::to_string(i);
        case Reader::INT_NO_DEFAULT: JsonUtils::ParseInt(root, key, i); return std::to_string(i);
        case Reader::INT64: JsonUtils::ParseInt64(root, key, l, 7); return std::to_string(l);
        case Reader::UINT8: JsonUtils::ParseUInt8(root, key, u8, 7); return std::to_string(u8);
        case Reader::UINT: JsonUtils::ParseUint(root, key, u, 7); return std::to_string(u);
        case Reader::STRING: JsonUtils::ParseString(root, key, s, "dflt"); return s;
        case Reader::STRING_NO_DEFAULT: JsonUtils::ParseString(root, key, s); return s;
    }
    return "unreachable";
}

struct TypedReadCase {
    const char* name;
    Reader reader;
    const char* json;
    const char* key;
    const char* expected;
};

TEST(JsonTypedReadTest, EveryMismatchGivesTheDefault)
{
    const TypedReadCase cases[] = {
        {"int member reads", Reader::INT, R"({"k": -42})", "k", "-42"},
        {"int on an array root gives the default", Reader::INT, R"([1, 2])", "k", "7"},
        {"int on a null root gives the default", Reader::INT, "null", "k", "7"},
        {"int on a missing key gives the default", Reader::INT, R"({"j": 1})", "k", "7"},
        {"int on a numeric string gives the default", Reader::INT, R"({"k": "42"})", "k", "7"},
        {"int on a bool gives the default", Reader::INT, R"({"k": true})", "k", "7"},
        {"int on a fraction gives the default", Reader::INT, R"({"k": 3.5})", "k", "7"},
        {"int on a whole double reads it", Reader::INT, R"({"k": 3.0})", "k", "3"},
        {"int above the int range gives the default", Reader::INT, R"({"k": 2147483648})", "k", "7"},
        {"int below the int range gives the default", Reader::INT, R"({"k": -2147483649})", "k", "7"},
        {"int without default on a missing key gives 0", Reader::INT_NO_DEFAULT, R"({})", "k", "0"},
        {"the empty key is a key like any other", Reader::INT, R"({"": 11})", "", "11"},
        {"int64 reads past the int range", Reader::INT64, R"({"k": 9007199254740993})", "k", "9007199254740993"},
        {"int64 reads the most negative value", Reader::INT64, R"({"k": -9223372036854775808})", "k",
         "-9223372036854775808"},
        {"int64 above its range gives the default", Reader::INT64, R"({"k": 9223372036854775808})", "k", "7"},
        {"uint8 keeps the low 8 bits of 300", Reader::UINT8, R"({"k": 300})", "k", "44"},
        {"uint8 reads -1 as 255", Reader::UINT8, R"({"k": -1})", "k", "255"},
        {"uint8 reads 256 as 0", Reader::UINT8, R"({"k": 256})", "k", "0"},
        {"uint8 past the int range gives the default", Reader::UINT8, R"({"k": 4294967296})", "k", "7"},
        {"uint8 on a string gives the default", Reader::UINT8, R"({"k": "1"})", "k", "7"},
        {"uint reads -1 as 4294967295", Reader::UINT, R"({"k": -1})", "k", "4294967295"},
        {"uint reads the int maximum", Reader::UINT, R"({"k": 2147483647})", "k", "2147483647"},
        {"uint above the int maximum gives the default", Reader::UINT, R"({"k": 2147483648})", "k", "7"},
        {"uint at the unsigned maximum gives the default", Reader::UINT, R"({"k": 4294967295})", "k", "7"},
        {"string member reads", Reader::STRING, R"({"k": "v\u00e9"})", "k", "v\xC3\xA9"},
        {"string on a number gives the default", Reader::STRING, R"({"k": 1})", "k", "dflt"},
        {"string on null gives the default", Reader::STRING, R"({"k": null})", "k", "dflt"},
        {"string without default on a missing key gives an empty text", Reader::STRING_NO_DEFAULT, R"({})", "k",
         ""},
    };
    for (const TypedReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        Json::Value root;
        ASSERT_TRUE(JsonUtils::Str2Json(c.json, root).Succeed());
        EXPECT_EQ(Read(c.reader, root, c.key), c.expected);
    }
}

}  // namespace
