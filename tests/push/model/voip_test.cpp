// VoIP info, request, result and call report: layouts, malformed and truncated parcels, failed
// writes.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kavo/host/want/want_params.h"
#include "kavo/push/model/report_voip_call_params.h"
#include "kavo/push/model/voip_info.h"
#include "kavo/push/model/voip_request.h"
#include "kavo/push/model/voip_result.h"
#include "tests/push/model/model_test_util.h"

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

const char* const READ_INFO = "Read VoIPInfo Error";
const char* const REQUEST_ERROR = "VoIPRequest unmarshalling error";
const char* const RESULT_ERROR = "New voipResult error";
const char* const REPORT_ERROR = "ReportVoIPCallParams unmarshalling error";
const char* const INFO_WRITE = "VoIPInfo::Marshalling: Write type_ Error";

std::shared_ptr<AAFwk::WantParams> Params()
{
    auto params = std::make_shared<AAFwk::WantParams>();
    params->SetParam("k", AAFwk::WantParams::Value(int32_t{7}));
    return params;
}

Bytes ParamsWire()
{
    return Wire().I32(1).Str("k").I32(3).I32(7).Done();
}

const VoIPInfo& Info()
{
    static const VoIPInfo info("t", "d", "c1");
    return info;
}

class VoIPTest : public ::testing::Test {};

TEST_F(VoIPTest, LayoutsFollowTheWireFormatAndReadBackEqual)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        Bytes expected;
        Decoder readBack;
    };
    const VoIPRequest request(45, Info());
    const VoIPResult bare;
    const VoIPResult full(Params());
    const ReportVoIPCallParams report("c1", 4294967295u);
    const VoIPInfo empty;
    const Case cases[] = {
        {"an info is three strings: type, data, call id", std::make_shared<VoIPInfo>(Info()),
         Wire().Str("t").Str("d").Str("c1").Done(), EqualTo(Info())},
        {"an info of empty strings keeps them", std::make_shared<VoIPInfo>(empty), Wire().Str("").Str("").Str("").Done(),
         EqualTo(empty)},
        {"a request is the survival time, a presence word and the info", std::make_shared<VoIPRequest>(request),
         Wire().I32(45).I32(1).Str("t").Str("d").Str("c1").Done(), EqualTo(request)},
        {"a result without parameters is one false", std::make_shared<VoIPResult>(bare), Wire().Bool(false).Done(),
         EqualTo(bare)},
        {"a result with parameters is true and the parameters behind a presence word",
         std::make_shared<VoIPResult>(full), Wire().Bool(true).I32(1).Append(ParamsWire()).Done(), EqualTo(full)},
        {"a call report keeps the largest status", std::make_shared<ReportVoIPCallParams>(report),
         Wire().Str("c1").U32(4294967295u).Done(), EqualTo(report)},
    };
    for (const auto& c : cases) {
        Watch watch;
        const Bytes bytes = Marshal(*c.record);
        EXPECT_EQ(bytes, c.expected) << c.name;
        Parcel parcel = ParcelOf(bytes);
        EXPECT_TRUE(c.readBack(parcel)) << c.name;
        watch.Expect({}, c.name);
    }
}

TEST_F(VoIPTest, MalformedParcelsAreRefusedWithTheirLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        Outcome outcome;
    };
    const Case cases[] = {
        {"an info that ends after two strings lacks its call id", DecoderOf<VoIPInfo>(),
         Wire().Str("t").Str("d").Done(), {false, {"VoIPInfo::Unmarshalling: Read callId Error"}}},
        {"a request whose info presence word is 0 logs both lines", DecoderOf<VoIPRequest>(),
         Wire().I32(45).I32(0).Done(), {false, {READ_INFO, REQUEST_ERROR}}},
        {"an empty request parcel logs both lines", DecoderOf<VoIPRequest>(), {}, {false, {READ_INFO, REQUEST_ERROR}}},
        {"a result announcing parameters with presence word 0 is refused", DecoderOf<VoIPResult>(),
         Wire().Bool(true).I32(0).Done(), {false, {"Read wantParams error", RESULT_ERROR}}},
        {"a result whose parameters claim more entries than the data holds is refused", DecoderOf<VoIPResult>(),
         Wire().Bool(true).I32(1).I32(1000000).Done(), {false, {"Read wantParams error", RESULT_ERROR}}},
        {"an empty result parcel fails its flag", DecoderOf<VoIPResult>(), {},
         {false, {"Read Valid is False", RESULT_ERROR}}},
        {"any non-zero flag announces parameters", EqualTo(VoIPResult(Params())),
         Wire().I32(-5).I32(1).Append(ParamsWire()).Done(), {true, {}}},
        {"a call report holding only the call id is refused", DecoderOf<ReportVoIPCallParams>(),
         Wire().Str("c1").Done(), {false, {REPORT_ERROR}}},
        {"a call id longer than the data is refused", DecoderOf<ReportVoIPCallParams>(),
         Wire().I32(64).I32(0).I32(0).Done(), {false, {REPORT_ERROR}}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        EXPECT_EQ(c.decode(parcel), c.outcome.decodes) << c.name;
        watch.Expect(c.outcome.logs, c.name);
    }
}

TEST_F(VoIPTest, EveryCutOfAParcelFailsWithItsLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        std::vector<Region> regions;
    };
    const Texts paramsLost = {"Read wantParams error", RESULT_ERROR};
    const Case cases[] = {
        {"info", DecoderOf<VoIPInfo>(), Marshal(Info()),
         {{8, {false, {"VoIPInfo::Unmarshalling: Read type Error"}}},
          {16, {false, {"VoIPInfo::Unmarshalling: Read data Error"}}},
          {24, {false, {"VoIPInfo::Unmarshalling: Read callId Error"}}}}},
        {"request", DecoderOf<VoIPRequest>(), Marshal(VoIPRequest(45, Info())),
         {{8, {false, {READ_INFO, REQUEST_ERROR}}},
          {16, {false, {"VoIPInfo::Unmarshalling: Read type Error", READ_INFO, REQUEST_ERROR}}},
          {24, {false, {"VoIPInfo::Unmarshalling: Read data Error", READ_INFO, REQUEST_ERROR}}},
          {32, {false, {"VoIPInfo::Unmarshalling: Read callId Error", READ_INFO, REQUEST_ERROR}}}}},
        {"result", DecoderOf<VoIPResult>(), Marshal(VoIPResult(Params())),
         {{4, {false, {"Read Valid is False", RESULT_ERROR}}}, {28, {false, paramsLost}}}},
        {"call report", DecoderOf<ReportVoIPCallParams>(), Marshal(ReportVoIPCallParams("c1", 3)),
         {{12, {false, {REPORT_ERROR}}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryCut(c.decode, c.bytes, c.regions, c.name);
    }
}

TEST_F(VoIPTest, EveryFailedWriteStopsWithItsLines)
{
    struct Case {
        const char* name;
        std::shared_ptr<Parcelable> record;
        std::vector<WriteRegion> regions;
    };
    const Case cases[] = {
        {"info logs one text whichever write failed", std::make_shared<VoIPInfo>(Info()), {{24, {INFO_WRITE}}}},
        {"request logs nothing of its own", std::make_shared<VoIPRequest>(45, Info()), {{8, {}}, {32, {INFO_WRITE}}}},
        {"result", std::make_shared<VoIPResult>(Params()),
         {{4, {"VoIPResult::Marshalling: Write Valid Error"}}, {28, {"Write wantParams error"}}}},
        {"call report logs nothing", std::make_shared<ReportVoIPCallParams>("c1", 3), {{12, {}}}},
    };
    for (const auto& c : cases) {
        ExpectEveryWriteFailure(*c.record, c.regions, c.name);
    }
}

}  // namespace
