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
    if (size == 0) {
        return 0;
    }
    const uint8_t* body = data + 1;
    const size_t bodySize = size - 1;
    switch (data[0] % 6) {
        case 0:
            RecordFuzz::CheckRoundTrip<MsgTimePoints>(body, bodySize);
            break;
        case 1:
            RecordFuzz::CheckRoundTrip<RemoteWantAgent>(body, bodySize);
            break;
        case 2:
            RecordFuzz::CheckRoundTrip<RemoteNotificationContent>(body, bodySize);
            break;
        case 3:
            RecordFuzz::CheckRoundTrip<RemoteNotificationInfo>(body, bodySize);
            break;
        case 4:
            RecordFuzz::CheckRoundTrip<RemoteNotificationRequest>(body, bodySize);
            break;
        default:
            RecordFuzz::CheckRoundTrip<RemoteNotificationResult>(
                body, bodySize, [](const RemoteNotificationResult& a, const RemoteNotificationResult& b) {
                    return a == b || RecordFuzz::HasNaN(a.GetParameters().get());
                });
            break;
    }
    return 0;
}
