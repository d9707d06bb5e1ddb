#include "kavo/push/json/json_utils.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "kavo/host/log/log.h"
#include "tests/support/test_support.h"

namespace {

using Kavo::Push::JsonUtils;

TEST(JsonTextTest, ParseFailuresCarryTheParserTextAndWritesKeepUtf8)
{
    Json::Value root;
    ASSERT_TRUE(JsonUtils::Str2Json(R"({"ttl": 86400})", root).Succeed());
    const std::pair<std::string, std::string> failures[] = {
        {R"({"ttl": 86400)", "* Line 1, Column 14\n  Missing ',' or '}' in object declaration\n"},
        {std::string(5000, '['), "Exceeded stackLimit in readValue()."}};  // thrown by jsoncpp
    for (const auto& [text, errs] : failures) {
        Kavo::LogCapture cap;
        Json::Value untouched("untouched");
        auto rsp = JsonUtils::Str2Json(text, untouched);
        EXPECT_EQ(rsp.GetInfo(), "json parse error, ret: 0, errs: " + errs + ": error(1000900001)");
        EXPECT_EQ(untouched, Json::Value("untouched"));
        EXPECT_EQ(KavoTest::LogLines(cap), std::vector<std::string>{"W json parse error"});
    }
    root["name"] = "Zo\xC3\xAB \xE6\x8E\xA8";
    root["list"].append(1);
    std::string indented = "stale";
    JsonUtils::Json2Str(root, indented);
    EXPECT_EQ(indented,
              "{\n\t\"list\" : \n\t[\n\t\t1\n\t],\n\t\"name\" : \"Zo\xC3\xAB \xE6\x8E\xA8\",\n\t\"ttl\" : 86400\n}");
    EXPECT_EQ(JsonUtils::Json2Str(root), "{\"list\":[1],\"name\":\"Zo\xC3\xAB \xE6\x8E\xA8\",\"ttl\":86400}");
}

// The JSON fuzzer holds every read with a default to the member's own type on each input; here
// the defaults of the defaults, and values its corpus lacks.
TEST(JsonTypedReadTest, DefaultsWholeDoublesAndWideIntegers)
{
    Json::Value root;
    ASSERT_TRUE(JsonUtils::Str2Json(R"({"whole": 3.0, "wide": 9007199254740993, "number": 1})", root).Succeed());
    int value = 99;
    JsonUtils::ParseInt(root, "whole", value, 7);
    EXPECT_EQ(value, 3);
    JsonUtils::ParseInt(root, "missing", value);
    EXPECT_EQ(value, 0);
    long wide = 99;
    JsonUtils::ParseInt64(root, "wide", wide, 7L);
    EXPECT_EQ(wide, 9007199254740993L);
    std::string text = "stale";
    JsonUtils::ParseString(root, "number", text);
    EXPECT_EQ(text, "");
}

}  // namespace
