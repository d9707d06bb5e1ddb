// Notification records from hostile bytes. The first byte picks the record: time points, want
// agent, content, info, request or result; the rest is its parcel, and the source of a record
// of the same kind built from it.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "fuzz/record_fuzz_util.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_info.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/model/remote_want_agent.h"

using namespace Kavo::Push;
using RecordFuzz::CheckDecodedAndBuilt;
using RecordFuzz::Source;

namespace {

MsgTimePoints BuildPoints(Source& in)
{
    MsgTimePoints points;
    for (int64_t* point : {&points.timePoint0_, &points.timePoint1_, &points.timePoint2_, &points.timePoint3_,
                           &points.timePoint4_, &points.timePoint5_}) {
        *point = in.Int64();
    }
    return points;
}

RemoteWantAgent BuildAgent(Source& in)
{
    RemoteWantAgent agent;
    agent.SetAbilityName(in.String());
    agent.SetParameters(in.String());
    return agent;
}

RemoteNotificationContent BuildContent(Source& in)
{
    const uint8_t parts = in.Byte();
    RemoteNotificationContent content;
    if ((parts & 0x01) != 0) {
        content.SetTitle(std::make_shared<std::string>(in.String()));
    }
    if ((parts & 0x02) != 0) {
        content.SetText(std::make_shared<std::string>(in.String()));
    }
    if ((parts & 0x04) != 0) {
        content.SetOverlayIcon(in.Image());
    }
    if ((parts & 0x08) != 0) {
        content.SetBadgeNumber(std::make_shared<long>(in.Int64()));
    }
    if ((parts & 0x10) != 0) {
        content.SetSetBadgeNumber(std::make_shared<long>(in.Int64()));
    }
    if ((parts & 0x20) != 0) {
        content.SetWantAgent(std::make_shared<RemoteWantAgent>(BuildAgent(in)));
    }
    if ((parts & 0x40) != 0) {
        content.SetMsgTimePoints(std::make_shared<MsgTimePoints>(BuildPoints(in)));
    }
    return content;
}

RemoteNotificationInfo BuildInfo(Source& in)
{
    std::string type = in.String();
    std::string data = in.String();
    return RemoteNotificationInfo(type, data, in.Int64());
}

RemoteNotificationRequest BuildRequest(Source& in)
{
    const int32_t survivalTime = in.Int32();
    const int32_t overlayIconSize = in.Int32();
    const int32_t contentSize = in.Int32();
    return RemoteNotificationRequest(survivalTime, overlayIconSize, contentSize, BuildInfo(in));
}

RemoteNotificationResult BuildResult(Source& in)
{
    RemoteNotificationContent content = BuildContent(in);
    return RemoteNotificationResult(content, in.Bool() ? in.Params() : nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    RecordFuzz::QuietLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const RecordFuzz::Check checks[] = {
        CheckDecodedAndBuilt<MsgTimePoints, BuildPoints>,
        CheckDecodedAndBuilt<RemoteWantAgent, BuildAgent>,
        CheckDecodedAndBuilt<RemoteNotificationContent, BuildContent>,
        CheckDecodedAndBuilt<RemoteNotificationInfo, BuildInfo>,
        CheckDecodedAndBuilt<RemoteNotificationRequest, BuildRequest>,
        CheckDecodedAndBuilt<
            RemoteNotificationResult, BuildResult,
            RecordFuzz::CheckRoundTripWithParams<RemoteNotificationResult, &RemoteNotificationResult::GetParameters>>,
    };
    return RecordFuzz::Dispatch(data, size, checks);
}
