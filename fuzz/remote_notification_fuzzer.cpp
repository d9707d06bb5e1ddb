// Notification records from hostile bytes. The first byte picks the record: time points, want
// agent, content, info, request or result; the rest is its parcel.
#include <cstddef>
#include <cstdint>

#include "fuzz/record_fuzz_util.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_info.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/model/remote_want_agent.h"

using namespace Kavo::Push;

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    RecordFuzz::QuietLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const RecordFuzz::Check checks[] = {
        RecordFuzz::CheckRoundTrip<MsgTimePoints>,
        RecordFuzz::CheckRoundTrip<RemoteWantAgent>,
        RecordFuzz::CheckRoundTrip<RemoteNotificationContent>,
        RecordFuzz::CheckRoundTrip<RemoteNotificationInfo>,
        RecordFuzz::CheckRoundTrip<RemoteNotificationRequest>,
        RecordFuzz::CheckRoundTripWithParams<RemoteNotificationResult, &RemoteNotificationResult::GetParameters>,
    };
    return RecordFuzz::Dispatch(data, size, checks);
}
