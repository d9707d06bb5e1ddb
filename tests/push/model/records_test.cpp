#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/push/model/model_test_util.h"

namespace {

using namespace Kavo::Push;
using namespace ModelTest;

const char* const PAYLOAD_ERR = "PushPayload unmarshalling error";
const char* const READ_PAYLOAD = "PushExtensionInfo::Unmarshalling: ReadStrongParcelable Error";
const char* const EXT_ERR = "ExtensionMessageInfo unmarshalling error";
const char* const CONTENT_ERR = "RemoteNotificationContent Unmarshalling Error";
const char* const READ_AGENT = "Read RemoteWantAgent Error";
const char* const AGENT_ERR = "New remoteWantAgent error";
const char* const AGENT_NAME = "RemoteWantAgent::ReadFromParcel: Read AbilityName Error";
const char* const AGENT_VALID = "RemoteWantAgent::ReadFromParcel: Read Valid Error";
const char* const AGENT_PARAMS = "RemoteWantAgent::ReadFromParcel: Read Parameters Error";
const char* const READ_POINTS = "Read MsgTimePoints error";
const char* const POINTS_ERR = "Read MsgTimePoints from parcel error";
const char* const W_AGENT = "Write wantAgent error";
const char* const W_AGENT_NAME = "RemoteWantAgent::Marshallin: Write AbilityName Error";
const char* const W_AGENT_VALID = "RemoteWantAgent::Marshallin: Write Valid Error";
const char* const W_AGENT_PARAMS = "Write parameters error";
const char* const SURVIVAL = "RemoteNotificationRequest::Unmarshalling: Read survivalTime_ Error";
const char* const CONTENT_SIZE = "RemoteNotificationRequest::Unmarshalling: Read contentSize_ Error";
const char* const NEW_INFO = "New RemoteNotificationInfo Error";
const char* const INFO_TYPE = "RemoteNotificationInfo::Unmarshalling: Read type Error";
const char* const INFO_DATA = "RemoteNotificationInfo::Unmarshalling: Read data Error";
const char* const INFO_ID = "RemoteNotificationInfo::Unmarshalling: Read id Error";
const char* const W_INFO_TYPE = "RemoteNotificationInfo::Marshalling: Read type_ Error";
const char* const W_INFO_DATA = "RemoteNotificationInfo::Marshalling: Read data_ Error";
const char* const W_INFO_ID = "RemoteNotificationInfo::Marshalling: Read id_ Error";
const char* const W_INFO = "RemoteNotificationRequest::Marshalling: Write remoteNotification_ Error";
const char* const RESULT_ERR = "New remoteNotificationResult error";
const char* const RESULT_VALID = "RemoteNotificationResult::ReadFromParcel: Read Valid from Parcel Error";
const char* const READ_PARAMS = "Read wantParams error";
const char* const W_CONTENT = "RemoteNotificationResult::Marshalling: Write Content Error";
const char* const READ_VOIP = "Read VoIPInfo Error";
const char* const VOIP_REQUEST_ERR = "VoIPRequest unmarshalling error";
const char* const VOIP_TYPE = "VoIPInfo::Unmarshalling: Read type Error";
const char* const VOIP_DATA = "VoIPInfo::Unmarshalling: Read data Error";
const char* const VOIP_CALL_ID = "VoIPInfo::Unmarshalling: Read callId Error";
const char* const W_VOIP = "VoIPInfo::Marshalling: Write type_ Error";
const char* const VOIP_RESULT_ERR = "New voipResult error";
const char* const ENTITY_ERR = "New EntitySetting error";

std::vector<Row> Rows()
{
    const Bytes points = Wire().I32(1).I64(1).I64(2).I64(3).I64(4).I64(5).I64(6);
    const Bytes agent = Wire().I32(1).Str("ab").I32(true).Str("p=1");
    const Bytes icon = Wire().I32(1).I32(1).I32(1).I32(6).I32(1).Raw({0xAB});  // 1x1, format 6, one byte
    const PushExtensionInfo extension(60, true, PushPayload("type", "data"));
    const Bytes extensionWire = Wire().I32(true).I32(60).I32(1).Str("type").Str("data");
    const RemoteNotificationInfo info("a", "b", 7);
    const VoIPInfo voip("t", "d", "c1");
    const Bytes voipWire = Wire().Str("t").Str("d").Str("c1");
    SubscribeNotificationBasicSetting basic;
    basic.SetEnabled(true);
    const Bytes entityHead = Wire().Str("e1").Str("n");
    // A value-form read that comes up short does not move, so in a cut content the next part is
    // read from the bytes of the one before: an agent's presence word may land on a badge number.
    const Texts agentLost = {READ_AGENT, CONTENT_ERR};
    const Texts agentNameLost = {AGENT_NAME, AGENT_ERR, READ_AGENT, CONTENT_ERR};
    return {
        RowOf("payload: type, data", PushPayload("type", "data"), Wire().Str("type").Str("data"), {{24, {PAYLOAD_ERR}}},
              {{24, {}}}),
        RowOf("extension info: the sync flag before the survival time, then the payload", extension, extensionWire,
              {{12, {READ_PAYLOAD, EXT_ERR}}, {36, {PAYLOAD_ERR, READ_PAYLOAD, EXT_ERR}}}, {{36, {}}}),
        RowOf("location request: its extension info's bytes, logging the last line again",
              RemoteLocationRequest(60, true, PushPayload("type", "data")), extensionWire,
              {{12, {READ_PAYLOAD, EXT_ERR, EXT_ERR}}, {36, {PAYLOAD_ERR, READ_PAYLOAD, EXT_ERR, EXT_ERR}}},
              {{36, {}}}),
        RowOf("time points: six 64-bit words, logging nothing of their own when written",
              *ContentOf(0x40).GetMsgTimePoints(), Bytes(points.begin() + 4, points.end()), {{48, {POINTS_ERR}}},
              {{48, {}}}),
        RowOf("want agent: name, true, parameters", *Agent("ab", "p=1"), Wire().Str("ab").I32(true).Str("p=1"),
              {{8, {AGENT_NAME, AGENT_ERR}}, {12, {AGENT_VALID, AGENT_ERR}}, {20, {AGENT_PARAMS, AGENT_ERR}}},
              {{8, {W_AGENT_NAME}}, {12, {W_AGENT_VALID}}, {20, {W_AGENT_PARAMS}}}),
        RowOf("want agent without parameters: name, false", *Agent("Main", ""), Wire().Str("Main").I32(false)),
        // Offsets: flags 0-8, title 8-16, text 16-24, icon 24-48, badges 48-64, agent 64-88, points 88-140.
        RowOf("content with every part: flags 0x7F, then the parts in bit order", ContentOf(0x7F),
              Wire().U64(0x7F).Str("T").Str("xy").Raw(icon).I64(5).I64(-1).Raw(agent).Raw(points),
              {{8, {}, true},
               {48, {"overlayIcon_ is Null", CONTENT_ERR}},
               {52, agentLost},
               {56, agentNameLost},
               {60, agentLost},
               {64, agentNameLost},
               {68, agentLost},
               {76, agentNameLost},
               {80, {AGENT_VALID, AGENT_ERR, READ_AGENT, CONTENT_ERR}},
               {88, {AGENT_PARAMS, AGENT_ERR, READ_AGENT, CONTENT_ERR}},
               {92, {READ_POINTS, CONTENT_ERR}},
               {140, {POINTS_ERR, READ_POINTS, CONTENT_ERR}}},
              {{8, {"RemoteNotificationContent::Marshalling: Write Flags Error"}},
               {16, {"RemoteNotificationContent::Marshalling: Write Title Error"}},
               {24, {"RemoteNotificationContent::Marshalling: Write Text Error"}},
               {48, {"RemoteNotificationContent::Marshalling: Write OverlayIcon Error"}},
               {56, {"RemoteNotificationContent::Marshalling: Write BadgeNumber Error"}},
               {64, {"RemoteNotificationContent::Marshalling: Write SetBadgeNumber Error"}},
               {68, {W_AGENT}},
               {76, {W_AGENT_NAME, W_AGENT}},
               {80, {W_AGENT_VALID, W_AGENT}},
               {88, {W_AGENT_PARAMS, W_AGENT}},
               {140, {"Write msg time points info error"}}}),
        RowOf("info: two strings and a 64-bit id", info, Wire().Str("a").Str("b").I64(7),
              {{8, {INFO_TYPE}}, {16, {INFO_DATA}}, {24, {INFO_ID}}},
              {{8, {W_INFO_TYPE}}, {16, {W_INFO_DATA}}, {24, {W_INFO_ID}}}),
        // The info is read even when a limit failed: a cut after the first integer logs three lines.
        RowOf("request: three limits, then the info behind its presence word",
              RemoteNotificationRequest(30, 1024, 4096, info),
              Wire().I32(30).I32(1024).I32(4096).I32(1).Str("a").Str("b").I64(7),
              {{4, {SURVIVAL, SURVIVAL, CONTENT_SIZE, NEW_INFO}},
               {8, {SURVIVAL, CONTENT_SIZE, NEW_INFO}},
               {12, {CONTENT_SIZE, NEW_INFO}},
               {16, {NEW_INFO}},
               {24, {INFO_TYPE, NEW_INFO}},
               {32, {INFO_DATA, NEW_INFO}},
               {40, {INFO_ID, NEW_INFO}}},
              {{4, {"RemoteNotificationRequest::Marshalling: Write survivalTime_ Error"}},
               {8, {"RemoteNotificationRequest::Marshalling: Write overlayIconSize_ Error"}},
               {12, {"RemoteNotificationRequest::Marshalling: Write contentSize_ Error"}},
               {16, {W_INFO}},
               {24, {W_INFO_TYPE, W_INFO}},
               {32, {W_INFO_DATA, W_INFO}},
               {40, {W_INFO_ID, W_INFO}}}),
        RowOf("result without parameters: its content, then false", RemoteNotificationResult(),
              Wire().I32(1).U64(0).I32(false)),
        // The content reads its flags leniently: a result cut inside them reads its own flag from
        // the flags' first half, which says no parameters follow.
        RowOf("result: the content, true, then the parameters", RemoteNotificationResult(ContentOf(0), Params()),
              Wire().I32(1).U64(0).I32(true).Raw(ParamsWire()),
              {{4, {"RemoteNotificationResult::ReadFromParcel: Read Content Error", RESULT_ERR}},
               {8, {RESULT_VALID, RESULT_ERR}},
               {12, {}, true},
               {16, {RESULT_VALID, RESULT_ERR}},
               {40, {READ_PARAMS, RESULT_ERR}}},
              {{4, {W_CONTENT}},
               {12, {"RemoteNotificationContent::Marshalling: Write Flags Error", W_CONTENT}},
               {16, {"RemoteNotificationResult::Marshalling: Write Valid Error"}},
               {40, {"Write wantParams error"}}}),
        RowOf("VoIP info: type, data, call id, one text whichever write fails", voip, voipWire,
              {{8, {VOIP_TYPE}}, {16, {VOIP_DATA}}, {24, {VOIP_CALL_ID}}}, {{24, {W_VOIP}}}),
        RowOf("VoIP request: survival time, then the info, nothing of its own written", VoIPRequest(45, voip),
              Wire().I32(45).I32(1).Raw(voipWire),
              {{8, {READ_VOIP, VOIP_REQUEST_ERR}},
               {16, {VOIP_TYPE, READ_VOIP, VOIP_REQUEST_ERR}},
               {24, {VOIP_DATA, READ_VOIP, VOIP_REQUEST_ERR}},
               {32, {VOIP_CALL_ID, READ_VOIP, VOIP_REQUEST_ERR}}},
              {{8, {}}, {32, {W_VOIP}}}),
        RowOf("VoIP result without parameters: false", VoIPResult(), Wire().I32(false)),
        RowOf("VoIP result: true, then the parameters", VoIPResult(Params()), Wire().I32(true).Raw(ParamsWire()),
              {{4, {"Read Valid is False", VOIP_RESULT_ERR}}, {28, {READ_PARAMS, VOIP_RESULT_ERR}}},
              {{4, {"VoIPResult::Marshalling: Write Valid Error"}}, {28, {"Write wantParams error"}}}),
        RowOf("call report: call id, then the status unsigned", ReportVoIPCallParams("c1", 4294967295u),
              Wire().Str("c1").Put(4294967295u), {{12, {"ReportVoIPCallParams unmarshalling error"}}}, {{12, {}}}),
        RowOf("entity without options: flags 0, id, name, type", Entity(nullptr, nullptr),
              Wire().U64(0).Raw(entityHead).I32(3)),
        RowOf("entity switched off: flags 1 and a false", Entity(std::make_shared<bool>(false), nullptr),
              Wire().U64(1).Raw(entityHead).I32(false).I32(3)),
        // The switch and the type are read leniently: a cut there fails only at the parameters.
        RowOf("entity with both options: flags 3", Entity(std::make_shared<bool>(true), Params()),
              Wire().U64(3).Raw(entityHead).I32(true).I32(3).Raw(ParamsWire()),
              {{16, {"EntitySetting::ReadFromParcel: Read EntityId Error", ENTITY_ERR}},
               {24, {"EntitySetting::ReadFromParcel: Read EntityName Error", ENTITY_ERR}},
               {56, {"Read WantParams error", ENTITY_ERR}}},
              {{8, {"EntitySetting::Marshalling: Write Flags Error"}},
               {16, {"EntitySetting::Marshalling: Write EntityId Error"}},
               {24, {"EntitySetting::Marshalling: Write EntityName Error"}},
               {28, {"EntitySetting::Marshalling: Write Enable Error"}},
               {32, {"EntitySetting::Marshalling: Write EntityType Error"}},
               {56, {"Write extraInfo error"}}}),
        RowOf("subscription without a switch: flags 0, name", Subscription(nullptr), Wire().U64(0).Str("com.a")),
        RowOf("subscription with a switch: flags 1, name, switch", Subscription(std::make_shared<bool>(true)),
              Wire().U64(1).Str("com.a").I32(true),
              {{20, {"SubscribeNotificationSetting: Read BundleName Error", "New SubscribeNotificationSetting error"}},
               {24, {}, true}},
              {{8, {"SubscribeNotificationSetting::Marshalling: Write Flags Error"}},
               {20, {"SubscribeNotificationSetting::Marshalling: Write BundleName Error"}},
               {24, {"SubscribeNotificationSetting::Marshalling: Write Enabled Error"}}}),
        RowOf("basic setting: one boolean", basic, Wire().I32(true),
              {{4, {"SubscribeNotificationBasicSetting unmarshalling error"}}},
              {{4, {"SubscribeNotificationBasicSetting: Marshal Failed"}}}),
    };
}

TEST(RecordTest, EveryRecordKeepsItsLayoutAndFailsEveryCutAndWriteWithItsLines)
{
    for (const Row& row : Rows()) {
        ExpectRow(row);
    }
}

// The rows' reads compare with ==, and so do the fuzz oracles: one field apart is unequal.
TEST(RecordTest, RecordsOneFieldApartAreUnequal)
{
    const VoIPInfo voip("t", "d", "c1");
    const RemoteNotificationResult result(ContentOf(0), Params());
    MsgTimePoints points = *ContentOf(0x40).GetMsgTimePoints(), later = points;
    later.timePoint5_ = 7;
    const std::pair<const char*, bool> equalities[] = {
        {"VoIP info: call id", voip == VoIPInfo("t", "d", "c2")},
        {"VoIP info: payload", voip == VoIPInfo("t", "x", "c1")},
        {"VoIP request: survival time", VoIPRequest(45, voip) == VoIPRequest(46, voip)},
        {"VoIP request: info", VoIPRequest(45, voip) == VoIPRequest(45, VoIPInfo("t", "d", "c2"))},
        {"call report: call id", ReportVoIPCallParams("c1", 4) == ReportVoIPCallParams("c2", 4)},
        {"call report: status", ReportVoIPCallParams("c1", 4) == ReportVoIPCallParams("c1", 5)},
        {"result: content", result == RemoteNotificationResult(ContentOf(1), Params())},
        {"result: parameters", result == RemoteNotificationResult(ContentOf(0), nullptr)},
        {"time points: the last", points == later},
    };
    for (const auto& [name, equal] : equalities) {
        EXPECT_FALSE(equal) << name;
    }
}

}  // namespace
