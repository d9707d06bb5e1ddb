#include "kavo/push/json/json_utils.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "kavo/host/log/log.h"

namespace {

using Kavo::Push::JsonUtils;

TEST(JsonTextTest, ParseFailuresCarryTheParserTextAndWritesKeepUtf8)
{
    Json::Value root;
    ASSERT_TRUE(JsonUtils::Str2Json(R"({"ttl": 86400})", root).Succeed());
    const std::pair<std::string, std::string> failures[] = {
        {R"({"ttl": 86400)", "* Line 1, Column 14\n  Missing ',' or '}' in object declaration\n"},
        {"", "* Line 1, Column 1\n  Syntax error: value, object or array expected.\n"},
        {std::string(5000, '['), "Exceeded stackLimit in readValue()."}};  // thrown by jsoncpp
    for (const auto& [text, errs] : failures) {
        Kavo::LogCapture cap;
        Json::Value untouched("untouched");
        auto rsp = JsonUtils::Str2Json(text, untouched);
        EXPECT_EQ(rsp.GetInfo(), "json parse error, ret: 0, errs: " + errs + ": error(1000900001)");
        EXPECT_EQ(untouched, Json::Value("untouched"));
        ASSERT_EQ(cap.Lines().size(), 1u);
        EXPECT_EQ(cap.Lines()[0].level, Kavo::LEVEL_WARN);
        EXPECT_EQ(cap.Lines()[0].text, "json parse error");
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
        } else if constexpr (std::is_same_v<T, long>) {
            JsonUtils::ParseInt64(root, "k", value, dflt...);
        } else if constexpr (std::is_same_v<T, unsigned char>) {
            JsonUtils::ParseUInt8(root, "k", value, dflt...);
        } else {
            JsonUtils::ParseUint(root, "k", value, dflt...);
        }
        return std::to_string(value);
    }
}

TEST(JsonTypedReadTest, EveryMismatchGivesTheDefault)
{
    const std::string dflt = "dflt";
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"int member reads", Read<int>(R"({"k": -42})", 7), "-42"},
        {"int on an array root", Read<int>(R"([1, 2])", 7), "7"},
        {"int on a missing key", Read<int>(R"({"j": 1})", 7), "7"},
        {"int on a numeric string", Read<int>(R"({"k": "42"})", 7), "7"},
        {"int on a whole double reads it", Read<int>(R"({"k": 3.0})", 7), "3"},
        {"int above the int range", Read<int>(R"({"k": 2147483648})", 7), "7"},
        {"int without default on a missing key gives 0", Read<int>(R"({})"), "0"},
        {"int64 reads past the int range", Read<long>(R"({"k": 9007199254740993})", 7L), "9007199254740993"},
        {"uint8 keeps the low 8 bits of 300", Read<unsigned char>(R"({"k": 300})", 7), "44"},
        {"uint reads -1 as 4294967295", Read<unsigned>(R"({"k": -1})", 7u), "4294967295"},
        {"uint above the int maximum", Read<unsigned>(R"({"k": 2147483648})", 7u), "7"},
        {"string member reads", Read<std::string>(R"({"k": "v\u00e9"})", dflt), "v\xC3\xA9"},
        {"string on null", Read<std::string>(R"({"k": null})", dflt), "dflt"},
        {"string without default on a number gives an empty text", Read<std::string>(R"({"k": 1})"), ""},
    };
    for (const auto& [name, got, expected] : cases) {
        EXPECT_EQ(got, expected) << name;
    }
}

}  // namespace
