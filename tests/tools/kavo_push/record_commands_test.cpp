// types, decode, encode and validate as a user runs them: every record type survives JSON ->
// parcel -> JSON, the tool agrees with the library's own Marshalling, a parcel that does not
// decode fails with the library's messages, and validate reports the library's codes.
#include <gtest/gtest.h>
#include <json/json.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "kavo/push/model/remote_notification_content.h"
#include "tests/support/test_support.h"
#include "tests/tools/kavo_push/tool_runner.h"

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
    };
    const Case cases[] = {
        {"MsgTimePoints", POINTS},
        {"RemoteWantAgent", R"({"abilityName":"","parameters":""})"},
        {"RemoteNotificationContent", CONTENT},
        {"RemoteNotificationContent", "{}"},
        {"RemoteNotificationInfo", R"({"type":"t","data":"","id":-7})"},
        {"RemoteNotificationRequest", R"({"survivalTime":-1,"overlayIconSize":250,"contentSize":0,)"
                                      R"("remoteNotification":{"type":"t","data":"d","id":7}})"},
        {"RemoteNotificationResult", R"({"content":)" + CONTENT + R"(,"parameters":)" + PARAMS + "}"},
        {"RemoteNotificationResult", R"({"content":{}})"},
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
        {"WantParams", "{}"},
        {"PixelMap", R"({"width":3,"height":1,"format":"ALPHA_8","pixels":"010203"})"},
    };
    std::set<std::string> covered;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + c.json);
        covered.insert(c.type);
        ToolRun encoded = RunTool({"encode", c.type, "--hex"}, c.json);
        ASSERT_EQ(encoded.status, 0) << encoded.err;
        ToolRun decoded = RunTool({"decode", c.type, "--hex"}, encoded.out);
        ASSERT_EQ(decoded.status, 0) << decoded.err;
        EXPECT_EQ(Parse(decoded.out), Parse(c.json)) << decoded.out;
        EXPECT_EQ(decoded.err, "");
    }
    ToolRun types = RunTool({"types"});
    std::istringstream lines(types.out);
    std::set<std::string> listed;
    for (std::string line; std::getline(lines, line);) {
        listed.insert(line.substr(0, line.find('\t')));
    }
    EXPECT_EQ(listed, covered) << "every listed type needs a row above";
}

// The library is the reference: bytes it writes decode to the JSON, and that JSON encodes back to
// the very same bytes.
TEST(RecordCommandsTest, ToolAgreesWithTheLibrarysMarshalling)
{
    Kavo::Push::RemoteNotificationContent content;
    auto icon = std::make_shared<Kavo::Media::PixelMap>(1, 1, Kavo::Media::PixelFormat::RGBA_8888);
    icon->SetPixels({1, 2, 3, 4});
    content.SetOverlayIcon(icon);
    content.SetSetBadgeNumber(std::make_shared<long>(-1));
    Kavo::Parcel parcel;
    ASSERT_TRUE(content.Marshalling(parcel));
    const std::string bytes(reinterpret_cast<const char*>(parcel.GetData()), parcel.GetDataSize());
    const std::string json =
        R"({"overlayIcon":{"width":1,"height":1,"format":"RGBA_8888","pixels":"01020304"},"setBadgeNumber":-1})";
    KavoTest::TempDir dir;
    ToolRun decoded = RunTool({"decode", "RemoteNotificationContent", dir.Write("parcel", bytes)});
    ASSERT_EQ(decoded.status, 0) << decoded.err;
    EXPECT_EQ(Parse(decoded.out), Parse(json));
    ToolRun encoded = RunTool({"encode", "RemoteNotificationContent", "-"}, json);
    EXPECT_EQ(encoded.status, 0) << encoded.err;
    EXPECT_TRUE(encoded.out == bytes) << "the tool's parcel differs from Marshalling's";
}

std::vector<std::string> Words(const std::string& line)
{
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

// What a user sees when something is wrong: the status, an empty standard output on failure,
// and standard error word for word.
TEST(RecordCommandsTest, FailuresSayWhyAndExitWithTheirStatus)
{
    struct Case {
        const char* behaviour;
        const char* args;
        std::string input;
        int status;
        std::string err;
    };
    const std::string badContent = "kavo-push decode: the bytes do not hold a RemoteNotificationContent\n";
    const std::string iconMissing = "ERROR D005300/push: overlayIcon_ is Null\n"
                                    "ERROR D005300/push: RemoteNotificationContent Unmarshalling Error\n" +
                                    badContent;
    const Case cases[] = {
        {"a content cut after its flags announce an icon", "decode RemoteNotificationContent --hex",
         "04000000 00000000", 1, iconMissing},
        {"a request cut after its first integer", "decode RemoteNotificationRequest --hex", "1e000000", 1,
         "ERROR D005300/push: RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error\n"
         "ERROR D005300/push: RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error\n"
         "ERROR D005300/push: New RemoteNotificationInfo Error\n"
         "kavo-push decode: the bytes do not hold a RemoteNotificationRequest\n"},
        {"bytes after a record are ignored with a warning", "decode SubscribeNotificationBasicSetting --hex",
         "01000000 ffffffff", 0,
         "kavo-push decode: warning: 4 bytes after the SubscribeNotificationBasicSetting are ignored\n"},
        {"JSON with a trailing comma", "encode PushPayload", R"({"type":"t",})", 1,
         "kavo-push encode: invalid JSON: Line 1, Column 13: Missing '}' or object member name\n"},
        {"a field of the wrong type, named by its path", "encode RemoteNotificationResult",
         R"({"content":{"overlayIcon":{"width":"2","height":1,"format":"ALPHA_8","pixels":"00"}}})", 1,
         "kavo-push encode: content.overlayIcon.width: expected a 32-bit integer\n"},
        {"a misspelt optional field is not silently dropped", "encode RemoteNotificationContent", R"({"tilte":"t"})", 1,
         "kavo-push encode: tilte: unknown field\n"},
        {"a missing field", "encode VoIPInfo", R"({"type":"t","data":"d"})", 1, "kavo-push encode: callId: missing\n"},
        {"nesting past the JSON reader's limit", "encode WantParams", std::string(100000, '['), 1,
         "kavo-push encode: invalid JSON: nested more than 1000 levels deep\n"},
        {"a large image is checked against its pixel text before it is made", "encode PixelMap",
         R"({"width":46340,"height":46340,"format":"ALPHA_8","pixels":""})", 1,
         "kavo-push encode: pixels: expected 2147395600 bytes, got 0\n"},
        {"a record larger than a parcel", "encode PushPayload",
         R"({"type":"t","data":")" + std::string(1 << 20, 'a') + R"("})", 1,
         "kavo-push encode: the record takes 1048592 bytes, more than the 1048576 a parcel holds\n"},
        {"a parameter whose value is not of its type", "encode WantParams", R"({"k":{"type":"int32","value":1.5}})", 1,
         "kavo-push encode: k.value: expected a value of type int32\n"},
        {"no type", "decode", "", 2,
         "kavo-push decode: expected TYPE and at most one FILE\nTry 'kavo-push decode --help'.\n"},
        {"an unknown type", "encode Want", "", 2,
         "kavo-push encode: unknown type 'Want'; 'kavo-push types' lists them\nTry 'kavo-push encode --help'.\n"},
        {"validate without a request", "validate --content -", "", 2,
         "kavo-push validate: expected --request FILE, optionally --content FILE, and --hex or --json\n"
         "Try 'kavo-push validate --help'.\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        ToolRun run = RunTool(Words(c.args), c.input);
        EXPECT_EQ(run.status, c.status);
        EXPECT_EQ(run.err, c.err);
        EXPECT_LT(run.peakKib, 256 << 10) << "no input costs much memory";
        if (c.status != 0) {
            EXPECT_EQ(run.out, "");
        }
    }
    KavoTest::ScopedEnv fatalOnly("KAVO_LOG_LEVEL", "fatal");
    EXPECT_EQ(RunTool(Words(cases[0].args), cases[0].input).err, iconMissing) << "the library's lines always show";
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
