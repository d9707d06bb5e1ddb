#include <gtest/gtest.h>
#include <json/json.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/kavo-push/tool_runner.h"

namespace {

using KavoTest::RunTool;
using KavoTest::ToolRun;

Json::Value Parse(const std::string& text)
{
    Json::Value json;
    std::istringstream(text) >> json;
    return json;
}

const std::string ICON = R"({"width":2,"height":2,"format":"RGB_565","pixels":"00ff11ee22dd33cc"})";
const std::string POINTS = R"({"timePoint0":-1,"timePoint1":0,"timePoint2":9223372036854775807,)"
                           R"("timePoint3":-9223372036854775808,"timePoint4":4,"timePoint5":5})";
const std::string PARAMS =
    R"({"s":{"type":"string","value":"v"},"b":{"type":"bool","value":false},"i":{"type":"int32","value":-2147483648},)"
    R"("l":{"type":"int64","value":-9223372036854775808},"d":{"type":"double","value":0.1},)"
    R"("n":{"type":"params","value":{"inner":{"type":"int32","value":1}}}})";
const std::string CONTENT = R"({"title":"t","text":"h\u00e9llo \u2713","overlayIcon":)" + ICON +
                            R"(,"badgeNumber":-3,"setBadgeNumber":9000000000,"wantAgent":)"
                            R"({"abilityName":"EntryAbility","parameters":"{\"k\":1}"},"msgTimePoints":)" +
                            POINTS + "}";
const std::string PAYLOAD = R"({"type":"t","data":"d"})";
const std::string VOIP = R"({"type":"call","data":"d","callId":"c-1"})";

TEST(RecordCommandsTest, EveryTypeSurvivesEncodeThenDecode)
{
    struct Case {
        const char* type;
        std::string json;
        const char* hex = nullptr;  // the parcel as the library's Marshalling writes it
    };
    const Case cases[] = {
        {"MsgTimePoints", POINTS},
        {"RemoteWantAgent", R"({"abilityName":"","parameters":""})"},
        {"RemoteNotificationContent", "{}"},
        {"RemoteNotificationContent",
         R"({"overlayIcon":{"width":1,"height":1,"format":"RGBA_8888","pixels":"01020304"},"setBadgeNumber":-1})",
         "1400000000000000010000000100000001000000030000000400000001020304ffffffffffffffff"},
        {"RemoteNotificationInfo", R"({"type":"t","data":"","id":-7})"},
        {"RemoteNotificationRequest", R"({"survivalTime":-1,"overlayIconSize":250,"contentSize":0,)"
                                      R"("remoteNotification":{"type":"t","data":"d","id":7}})"},
        {"RemoteNotificationResult", R"({"content":)" + CONTENT + R"(,"parameters":)" + PARAMS + "}"},
        {"PushPayload", PAYLOAD},
        {"PushExtensionInfo", R"({"survivalTime":30,"sync":true,"pushPayload":)" + PAYLOAD + "}"},
        {"RemoteLocationRequest", R"({"survivalTime":0,"sync":false,"pushPayload":)" + PAYLOAD + "}"},
        {"VoIPInfo", VOIP},
        {"VoIPRequest", R"({"survivalTime":2147483647,"voIP":)" + VOIP + "}"},
        {"VoIPResult", R"({"parameters":)" + PARAMS + "}"},
        {"VoIPResult", "{}"},
        {"ReportVoIPCallParams", R"({"callId":"c-1","status":4294967295})"},
        {"EntitySetting",
         R"({"entityId":"i","entityName":"n","enable":false,"entityType":-5,"extraInfo":)" + PARAMS + "}"},
        {"EntitySetting", R"({"entityId":"","entityName":"","entityType":0})"},
        {"SubscribeNotificationSetting", R"({"bundleName":"com.example","enabled":false})"},
        {"SubscribeNotificationSetting", R"({"bundleName":"com.example"})"},
        {"SubscribeNotificationBasicSetting", R"({"enabled":true})"},
        {"WantParams", PARAMS},
        {"PixelMap", R"({"width":3,"height":1,"format":"ALPHA_8","pixels":"010203"})"},
    };
    std::set<std::string> covered;
    KavoTest::TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + c.json);
        covered.insert(c.type);
        ToolRun encoded = RunTool({"encode", c.type}, c.json, dir.File("parcel"));
        ASSERT_EQ(encoded.status, 0) << encoded.err;
        ToolRun decoded = RunTool({"decode", c.type, dir.File("parcel")});
        ASSERT_EQ(decoded.status, 0) << decoded.err;
        EXPECT_EQ(Parse(decoded.out), Parse(c.json)) << decoded.out;
        EXPECT_EQ(decoded.err, "");
        if (c.hex != nullptr) {
            EXPECT_EQ(RunTool({"encode", c.type, "--hex", "-"}, c.json).out, std::string(c.hex) + "\n");
        }
    }
    ToolRun types = RunTool({"types"});
    std::istringstream lines(types.out);
    std::set<std::string> listed;
    for (std::string line; std::getline(lines, line);) {
        listed.insert(line.substr(0, line.find('\t')));
    }
    EXPECT_EQ(listed, covered) << "every listed type needs a row above";
}

// Each row runs twice: from the JSON forms, and from parcels the tool encoded first.
TEST(RecordCommandsTest, ValidateReportsEachCheckWithThePublicCode)
{
    auto request = [](int survival, int iconKib, int contentKib) {
        return R"({"survivalTime":)" + std::to_string(survival) + R"(,"overlayIconSize":)" + std::to_string(iconKib) +
               R"(,"contentSize":)" + std::to_string(contentKib) +
               R"(,"remoteNotification":{"type":"t","data":"d","id":1}})";
    };
    auto iconContent = [](int width, int height) {
        return R"({"title":"t","overlayIcon":{"width":)" + std::to_string(width) + R"(,"height":)" +
               std::to_string(height) + R"(,"format":"RGBA_8888","pixels":")" +
               std::string(static_cast<size_t>(width * height * 8), 'a') + R"("}})";
    };
    const std::string invalid = "1000900027\tRemote notification content is invalid.\t";
    struct Case {
        const char* behaviour;
        std::string request;
        std::string content;  // empty: no --content
        int status;
        std::string out;
    };
    const Case cases[] = {
        {"a request alone", request(30, 1, 1), "", 0, "request\tpassed\n"},
        {"a request and content within its limits", request(30, 1, 1), iconContent(2, 2), 0,
         "request\tpassed\ncontent\tpassed\noverlay icon\tpassed\n"},
        {"an icon over the limit", request(30, 1, 4), iconContent(32, 16), 1,
         "request\tpassed\ncontent\tpassed\noverlay icon\tfailed\t" + invalid +
             "Overlay icon size is 2048 over 1024: error(1000900027), innerCode(100000035)\n"},
        {"content over the limit: its parcel of 8 + 8 + 4 + 16 + 1024 bytes counts", request(30, 4, 1),
         iconContent(16, 16), 1,
         "request\tpassed\ncontent\tfailed\t" + invalid +
             "Content size is 1060 over 1024: error(1000900027), innerCode(100000036)\noverlay icon\tpassed\n"},
        {"a survival time of zero", request(0, 1, 1), "", 1,
         "request\tfailed\t401\tInvalid input parameter.\tsurvival time is invalid: 0: error(401)\n"},
    };
    KavoTest::TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        std::vector<std::string> fromJson = {"validate", "--json", "--request", dir.Write("r.json", c.request)};
        std::vector<std::string> fromHex = {
            "validate", "--hex", "--request",
            dir.Write("r.hex", RunTool({"encode", "RemoteNotificationRequest", "--hex"}, c.request).out)};
        if (!c.content.empty()) {
            fromJson.insert(fromJson.end(), {"--content", dir.Write("c.json", c.content)});
            fromHex.insert(
                fromHex.end(),
                {"--content",
                 dir.Write("c.hex", RunTool({"encode", "RemoteNotificationContent", "--hex"}, c.content).out)});
        }
        for (const auto& args : {fromJson, fromHex}) {
            ToolRun run = RunTool(args);
            EXPECT_EQ(run.status, c.status) << args[1] << "\n" << run.err;
            EXPECT_EQ(run.out, c.out) << args[1];
        }
    }
}

}  // namespace
