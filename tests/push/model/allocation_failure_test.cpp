// Records read from a parcel when an allocation fails: every record allocated with the
// non-throwing new gives null with its own lines, and the records built first and filled
// afterwards give null silently.
#include <cstddef>
#include <cstdlib>
#include <new>

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

template <typename T>
Reader Any()
{
    return [](Parcel& parcel) { return T::Unmarshalling(parcel) == nullptr ? -1 : 0; };
}

class AllocationFailureTest : public ::testing::Test {};

TEST_F(AllocationFailureTest, EachFailedAllocationGivesNullWithItsLines)
{
    struct Case {
        const char* name;
        Reader read;
        Bytes bytes;
        int failAt;  // which non-throwing allocation of the read fails, from 1
        Texts logs;
    };
    const Bytes info = Wire().Str("a").Str("b").I64(7);
    const Bytes request = Wire().I32(30).I32(1024).I32(4096).I32(1).Raw(info);
    const Bytes extension = Wire().I32(true).I32(60).I32(1).Str("type").Str("data");
    const Bytes withAgent = Wire().U64(0x20).I32(1).Str("ab").I32(false);
    const Bytes withPoints = Wire().U64(0x40).I32(1).I64(1).I64(2).I64(3).I64(4).I64(5).I64(6);
    const Reader content = Any<RemoteNotificationContent>();
    const Reader location = Any<RemoteLocationRequest>();
    const char* const contentErr = "RemoteNotificationContent Unmarshalling Error";
    const Case cases[] = {
        {"time points are dropped silently", Any<MsgTimePoints>(), Wire().I64(1), 1, {}},
        {"a content is dropped silently", content, Wire().U64(0), 1, {}},
        {"a nested want agent not allocated", content, withAgent, 2, {"Read RemoteWantAgent Error", contentErr}},
        {"a want agent that cannot be copied", content, withAgent, 3, {"New RemoteWantAgent Error", contentErr}},
        {"time points that cannot be copied", content, withPoints, 3, {"New MsgTimePoints error", contentErr}},
        {"an info", Any<RemoteNotificationInfo>(), info, 1, {"New RemoteNotificationInfo error"}},
        {"a request reads nothing",
         Any<RemoteNotificationRequest>(),
         request,
         1,
         {"New remoteNotificationRequest error"}},
        {"a request's info logs both spellings",
         Any<RemoteNotificationRequest>(),
         request,
         2,
         {"New RemoteNotificationInfo error", "New RemoteNotificationInfo Error"}},
        {"result parameters that cannot be copied",
         Any<RemoteNotificationResult>(),
         Wire().I32(1).U64(0).I32(true).Raw(ParamsWire()),
         4,
         {"New wantParams error", "New remoteNotificationResult error"}},
        {"a VoIP info", Any<VoIPInfo>(), Wire().Str("t").Str("d").Str("c1"), 1, {"New VoIPInfo error"}},
        {"a VoIP request",
         Any<VoIPRequest>(),
         Wire().I32(45).I32(1).Str("t").Str("d").Str("c1"),
         1,
         {"New voipInfoRequest error"}},
        {"VoIP result parameters",
         Any<VoIPResult>(),
         Wire().I32(true).Raw(ParamsWire()),
         3,
         {"New wantParams error", "New voipResult error"}},
        {"a call report", Any<ReportVoIPCallParams>(), Wire().Str("c").I32(1), 1, {"New ReportVoIPCallParams error"}},
        {"a payload", Any<PushPayload>(), Wire().Str("t").Str("d"), 1, {"New PushPayload error"}},
        {"an extension info", Any<PushExtensionInfo>(), extension, 1, {"New extensionMessageInfo error"}},
        {"a location request's inner info",
         location,
         extension,
         1,
         {"New extensionMessageInfo error", "ExtensionMessageInfo unmarshalling error"}},
        {"a location request after its info", location, extension, 3, {"New RemoteLocationRequest error"}},
        {"entity parameters",
         Any<EntitySetting>(),
         Wire().U64(2).Str("e").Str("n").I32(0).Raw(ParamsWire()),
         3,
         {"New WantParams error", "New EntitySetting error"}},
        {"a basic setting",
         Any<SubscribeNotificationBasicSetting>(),
         Wire().I32(true),
         1,
         {"New SubscribeNotificationBasicSetting error"}},
    };
    for (const auto& c : cases) {
        Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        failCountdown = c.failAt;
        const int outcome = c.read(parcel);
        const int left = failCountdown;
        failCountdown = 0;
        EXPECT_EQ(outcome, -1) << c.name;
        EXPECT_EQ(left, 0) << c.name << ": fewer allocations than expected";
        watch.Expect(c.logs, c.name);
    }
}

}  // namespace
