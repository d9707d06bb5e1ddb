// VoIP info, request, result and call report: layouts, malformed and truncated parcels, failed
// writes.
#include <cstdint>
#include <memory>
#include <string>

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
const char* const READ_TYPE = "VoIPInfo::Unmarshalling: Read type Error";
const char* const READ_DATA = "VoIPInfo::Unmarshalling: Read data Error";
const char* const READ_CALL_ID = "VoIPInfo::Unmarshalling: Read callId Error";

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

const VoIPInfo INFO("t", "d", "c1");

class VoIPTest : public ::testing::Test {};

TEST_F(VoIPTest, LayoutsFollowTheWireFormatAndReadBackEqual)
{
    const VoIPRequest request(45, INFO);
    const VoIPResult bare;
    const VoIPResult full(Params());
    const ReportVoIPCallParams report("c1", 4294967295u);
    ExpectLayouts({
        {"an info is three strings: type, data, call id", std::make_shared<VoIPInfo>(INFO),
         Wire().Str("t").Str("d").Str("c1").Done(), EqualTo(INFO)},
        {"an info of empty strings keeps them", std::make_shared<VoIPInfo>(), Wire().Str("").Str("").Str("").Done(),
         EqualTo(VoIPInfo())},
        {"a request is the survival time, a presence word and the info", std::make_shared<VoIPRequest>(request),
         Wire().I32(45).I32(1).Str("t").Str("d").Str("c1").Done(), EqualTo(request)},
        {"a result without parameters is one false", std::make_shared<VoIPResult>(bare), Wire().Bool(false).Done(),
         EqualTo(bare)},
        {"a result with parameters is true and the parameters behind a presence word",
         std::make_shared<VoIPResult>(full), Wire().Bool(true).I32(1).Append(ParamsWire()).Done(), EqualTo(full)},
        {"a call report keeps the largest status", std::make_shared<ReportVoIPCallParams>(report),
         Wire().Str("c1").U32(4294967295u).Done(), EqualTo(report)},
    });
}

TEST_F(VoIPTest, MalformedParcelsAreRefusedWithTheirLines)
{
    const Decoder result = DecoderOf<VoIPResult>();
    ExpectParcels({
        {"a request whose info presence word is 0 logs both lines",
         DecoderOf<VoIPRequest>(),
         Wire().I32(45).I32(0).Done(),
         false,
         {READ_INFO, REQUEST_ERROR}},
        {"a result announcing parameters with presence word 0 is refused",
         result,
         Wire().Bool(true).I32(0).Done(),
         false,
         {"Read wantParams error", RESULT_ERROR}},
        {"parameters claiming more entries than the data holds are refused",
         result,
         Wire().Bool(true).I32(1).I32(1000000).Done(),
         false,
         {"Read wantParams error", RESULT_ERROR}},
        {"any non-zero flag announces parameters",
         EqualTo(VoIPResult(Params())),
         Wire().I32(-5).I32(1).Append(ParamsWire()).Done(),
         true,
         {}},
        {"a call id longer than the data is refused",
         DecoderOf<ReportVoIPCallParams>(),
         Wire().I32(64).I32(0).I32(0).Done(),
         false,
         {REPORT_ERROR}},
    });
}

TEST_F(VoIPTest, EveryCutOfAParcelFailsWithItsLines)
{
    ExpectEveryCut({
        {"info",
         DecoderOf<VoIPInfo>(),
         Marshal(INFO),
         {{8, false, {READ_TYPE}}, {16, false, {READ_DATA}}, {24, false, {READ_CALL_ID}}}},
        {"request",
         DecoderOf<VoIPRequest>(),
         Marshal(VoIPRequest(45, INFO)),
         {{8, false, {READ_INFO, REQUEST_ERROR}},
          {16, false, {READ_TYPE, READ_INFO, REQUEST_ERROR}},
          {24, false, {READ_DATA, READ_INFO, REQUEST_ERROR}},
          {32, false, {READ_CALL_ID, READ_INFO, REQUEST_ERROR}}}},
        {"result",
         DecoderOf<VoIPResult>(),
         Marshal(VoIPResult(Params())),
         {{4, false, {"Read Valid is False", RESULT_ERROR}}, {28, false, {"Read wantParams error", RESULT_ERROR}}}},
        {"call report",
         DecoderOf<ReportVoIPCallParams>(),
         Marshal(ReportVoIPCallParams("c1", 3)),
         {{12, false, {REPORT_ERROR}}}},
    });
}

TEST_F(VoIPTest, EveryFailedWriteStopsWithItsLines)
{
    const char* const infoWrite = "VoIPInfo::Marshalling: Write type_ Error";
    ExpectEveryWriteFailure({
        {"info logs one text whichever write failed", std::make_shared<VoIPInfo>(INFO), {{24, {infoWrite}}}},
        {"request logs nothing of its own", std::make_shared<VoIPRequest>(45, INFO), {{8, {}}, {32, {infoWrite}}}},
        {"result",
         std::make_shared<VoIPResult>(Params()),
         {{4, {"VoIPResult::Marshalling: Write Valid Error"}}, {28, {"Write wantParams error"}}}},
        {"call report logs nothing", std::make_shared<ReportVoIPCallParams>("c1", 3), {{12, {}}}},
    });
}

}  // namespace
