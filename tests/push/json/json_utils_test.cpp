#include "kavo/push/json/json_utils.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <type_traits>
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

// Reads the member "k" of `json` over a stale value (99 or "stale"), with the default given if any,
// and prints what it gave.
template <typename T, typename... Default>
std::string Read(const char* json, Default... dflt)
{
    Json::Value root;
    EXPECT_TRUE(JsonUtils::Str2Json(json, root).Succeed()) << json;
    if constexpr (std::is_same_v<T, std::string>) {
        T value = "stale";
        JsonUtils::ParseString(root, "k", value, dflt...);
        return value;
    } else {
        T value = 99;
        if constexpr (std::is_same_v<T, int>) {
            JsonUtils::ParseInt(root, "k", value, dflt...);
        } else {
            JsonUtils::ParseInt64(root, "k", value, dflt...);
        }
        return std::to_string(value);
    }
}

// The JSON fuzzer holds every read with a default to the member's own type on each input; here
// the defaults of the defaults, and values its corpus lacks.
TEST(JsonTypedReadTest, DefaultsWholeDoublesAndWideIntegers)
{
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"int on a whole double reads it", Read<int>(R"({"k": 3.0})", 7), "3"},
        {"int without default on a missing key gives 0", Read<int>(R"({})"), "0"},
        {"int64 reads past the int range", Read<long>(R"({"k": 9007199254740993})", 7L), "9007199254740993"},
        {"string without default on a number gives an empty text", Read<std::string>(R"({"k": 1})"), ""},
    };
    for (const auto& [name, got, expected] : cases) {
        EXPECT_EQ(got, expected) << name;
    }
}

}  // namespace
