// Records read from a parcel when an allocation fails: every record allocated with the
// non-throwing new gives null with its own lines, and the records built first and filled
// afterwards give null silently.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kavo/push/model/entity_setting.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"
#include "kavo/push/model/remote_location_request.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_info.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/model/remote_want_agent.h"
#include "kavo/push/model/report_voip_call_params.h"
#include "kavo/push/model/subscribe_notification_setting.h"
#include "kavo/push/model/voip_info.h"
#include "kavo/push/model/voip_request.h"
#include "kavo/push/model/voip_result.h"
#include "tests/push/model/model_test_util.h"

// The n-th non-throwing allocation of this thread fails while a countdown is armed. The
// scalar forms are all replaced so that every scalar new and delete of the process pair up.
namespace {
thread_local int failCountdown = 0;
}

void* operator new(std::size_t size)
{
    if (void* p = std::malloc(size == 0 ? 1 : size)) {
        return p;
    }
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    if (failCountdown > 0 && --failCountdown == 0) {
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* p) noexcept
{
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}

void operator delete(void* p, const std::nothrow_t&) noexcept
{
    std::free(p);
}

namespace {

using namespace Kavo;
using namespace Kavo::Push;
using namespace ModelTest;

Bytes ParamsWire()
{
    return Wire().I32(1).Str("k").I32(3).I32(7).Done();
}

class AllocationFailureTest : public ::testing::Test {};

TEST_F(AllocationFailureTest, EachFailedAllocationGivesNullWithItsLines)
{
    struct Case {
        const char* name;
        Decoder decode;
        Bytes bytes;
        int failAt;  // which non-throwing allocation of the read fails, from 1
        Texts logs;
    };
    const Bytes info = Wire().Str("a").Str("b").I64(7).Done();
    const Bytes request = Wire().I32(30).I32(1024).I32(4096).I32(1).Append(info).Done();
    const Bytes voip = Wire().Str("t").Str("d").Str("c1").Done();
    const Bytes voipRequest = Wire().I32(45).I32(1).Append(voip).Done();
    const Bytes voipResult = Wire().Bool(true).I32(1).Append(ParamsWire()).Done();
    const Bytes extension = Wire().Bool(true).I32(60).I32(1).Str("type").Str("data").Done();
    const Bytes withAgent = Wire().U64(0x20).I32(1).Str("ab").Bool(false).Done();
    const Bytes withPoints = Wire().U64(0x40).I32(1).I64(1).I64(2).I64(3).I64(4).I64(5).I64(6).Done();
    const Bytes result = Wire().I32(1).U64(0).Bool(true).I32(1).Append(ParamsWire()).Done();
    const Bytes entity = Wire().U64(2).Str("e").Str("n").I32(0).I32(1).Append(ParamsWire()).Done();
    const Decoder content = DecoderOf<RemoteNotificationContent>();
    const Decoder location = DecoderOf<RemoteLocationRequest>();
    const char* const contentError = "RemoteNotificationContent Unmarshalling Error";
    const Case cases[] = {
        {"time points are dropped silently", DecoderOf<MsgTimePoints>(), Wire().I64(1).Done(), 1, {}},
        {"a content is dropped silently", content, Wire().U64(0).Done(), 1, {}},
        {"a nested want agent not allocated", content, withAgent, 2, {"Read RemoteWantAgent Error", contentError}},
        {"a want agent that cannot be copied", content, withAgent, 3, {"New RemoteWantAgent Error", contentError}},
        {"time points that cannot be copied", content, withPoints, 3, {"New MsgTimePoints error", contentError}},
        {"an info", DecoderOf<RemoteNotificationInfo>(), info, 1, {"New RemoteNotificationInfo error"}},
        {"a request reads nothing",
         DecoderOf<RemoteNotificationRequest>(),
         request,
         1,
         {"New remoteNotificationRequest error"}},
        {"a request's info logs both spellings",
         DecoderOf<RemoteNotificationRequest>(),
         request,
         2,
         {"New RemoteNotificationInfo error", "New RemoteNotificationInfo Error"}},
        {"result parameters that cannot be copied",
         DecoderOf<RemoteNotificationResult>(),
         result,
         4,
         {"New wantParams error", "New remoteNotificationResult error"}},
        {"a VoIP info", DecoderOf<VoIPInfo>(), voip, 1, {"New VoIPInfo error"}},
        {"a VoIP request", DecoderOf<VoIPRequest>(), voipRequest, 1, {"New voipInfoRequest error"}},
        {"VoIP result parameters",
         DecoderOf<VoIPResult>(),
         voipResult,
         3,
         {"New wantParams error", "New voipResult error"}},
        {"a call report",
         DecoderOf<ReportVoIPCallParams>(),
         Wire().Str("c").U32(1).Done(),
         1,
         {"New ReportVoIPCallParams error"}},
        {"a payload", DecoderOf<PushPayload>(), Wire().Str("t").Str("d").Done(), 1, {"New PushPayload error"}},
        {"an extension info", DecoderOf<PushExtensionInfo>(), extension, 1, {"New extensionMessageInfo error"}},
        {"a location request's inner info",
         location,
         extension,
         1,
         {"New extensionMessageInfo error", "ExtensionMessageInfo unmarshalling error"}},
        {"a location request after its info", location, extension, 3, {"New RemoteLocationRequest error"}},
        {"entity parameters",
         DecoderOf<EntitySetting>(),
         entity,
         3,
         {"New WantParams error", "New EntitySetting error"}},
        {"a basic setting",
         DecoderOf<SubscribeNotificationBasicSetting>(),
         Wire().Bool(true).Done(),
         1,
         {"New SubscribeNotificationBasicSetting error"}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        failCountdown = c.failAt;
        const bool decoded = c.decode(parcel);
        const int left = failCountdown;
        failCountdown = 0;
        EXPECT_FALSE(decoded) << c.name;
        EXPECT_EQ(left, 0) << c.name << ": fewer allocations than expected";
        watch.Expect(c.logs, c.name);
    }
}

}  // namespace
