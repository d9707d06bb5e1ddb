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
    const Bytes voipInfo = Wire().Str("t").Str("d").Str("c1").Done();
    const Bytes extension = Wire().Bool(true).I32(60).I32(1).Str("type").Str("data").Done();
    const Bytes agentContent = Wire().U64(0x20).I32(1).Str("ab").Bool(false).Done();
    const Bytes pointsContent = Wire().U64(0x40).I32(1).I64(1).I64(2).I64(3).I64(4).I64(5).I64(6).Done();
    const Bytes result = Wire().I32(1).U64(0).Bool(true).I32(1).Append(ParamsWire()).Done();
    const std::string contentError = "RemoteNotificationContent Unmarshalling Error";
    const Case cases[] = {
        {"time points are dropped silently", DecoderOf<MsgTimePoints>(), Wire().I64(1).Done(), 1, {}},
        {"a want agent is dropped silently", DecoderOf<RemoteWantAgent>(), Wire().Str("ab").Bool(false).Done(), 1, {}},
        {"a content is dropped silently", DecoderOf<RemoteNotificationContent>(), Wire().U64(0).Done(), 1, {}},
        {"a nested want agent that is not allocated is a failed read", DecoderOf<RemoteNotificationContent>(),
         agentContent, 2, {"Read RemoteWantAgent Error", contentError}},
        {"a want agent that cannot be copied", DecoderOf<RemoteNotificationContent>(), agentContent, 3,
         {"New RemoteWantAgent Error", contentError}},
        {"time points that cannot be copied are logged only", DecoderOf<RemoteNotificationContent>(), pointsContent,
         3, {"New MsgTimePoints error", contentError}},
        {"an info read whole but not allocated", DecoderOf<RemoteNotificationInfo>(), info, 1,
         {"New RemoteNotificationInfo error"}},
        {"a request not allocated reads nothing", DecoderOf<RemoteNotificationRequest>(), request, 1,
         {"New remoteNotificationRequest error"}},
        {"a request whose info is not allocated logs both spellings", DecoderOf<RemoteNotificationRequest>(), request,
         2, {"New RemoteNotificationInfo error", "New RemoteNotificationInfo Error"}},
        {"a result is dropped silently", DecoderOf<RemoteNotificationResult>(), result, 1, {}},
        {"result parameters that cannot be copied", DecoderOf<RemoteNotificationResult>(), result, 4,
         {"New wantParams error", "New remoteNotificationResult error"}},
        {"a VoIP info read whole but not allocated", DecoderOf<VoIPInfo>(), voipInfo, 1, {"New VoIPInfo error"}},
        {"a VoIP request not allocated", DecoderOf<VoIPRequest>(), Wire().I32(45).I32(1).Append(voipInfo).Done(), 1,
         {"New voipInfoRequest error"}},
        {"a VoIP result is dropped silently", DecoderOf<VoIPResult>(), Wire().Bool(false).Done(), 1, {}},
        {"VoIP result parameters that cannot be copied", DecoderOf<VoIPResult>(),
         Wire().Bool(true).I32(1).Append(ParamsWire()).Done(), 3, {"New wantParams error", "New voipResult error"}},
        {"a call report not allocated", DecoderOf<ReportVoIPCallParams>(), Wire().Str("c1").U32(1).Done(), 1,
         {"New ReportVoIPCallParams error"}},
        {"a payload not allocated", DecoderOf<PushPayload>(), Wire().Str("type").Str("data").Done(), 1,
         {"New PushPayload error"}},
        {"an extension info not allocated", DecoderOf<PushExtensionInfo>(), extension, 1,
         {"New extensionMessageInfo error"}},
        {"a location request whose inner info is not allocated", DecoderOf<RemoteLocationRequest>(), extension, 1,
         {"New extensionMessageInfo error", "ExtensionMessageInfo unmarshalling error"}},
        {"a location request not allocated after its info", DecoderOf<RemoteLocationRequest>(), extension, 3,
         {"New RemoteLocationRequest error"}},
        {"an entity is dropped silently", DecoderOf<EntitySetting>(), Wire().U64(0).Str("e").Str("n").Done(), 1, {}},
        {"entity parameters that cannot be copied", DecoderOf<EntitySetting>(),
         Wire().U64(2).Str("e").Str("n").I32(0).I32(1).Append(ParamsWire()).Done(), 3,
         {"New WantParams error", "New EntitySetting error"}},
        {"a subscription is dropped silently", DecoderOf<SubscribeNotificationSetting>(),
         Wire().U64(0).Str("com.a").Done(), 1, {}},
        {"a basic setting not allocated", DecoderOf<SubscribeNotificationBasicSetting>(), Wire().Bool(true).Done(), 1,
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
