#include "service/service_reply.h"

#include "kavo/push/common/push_error_message.h"

namespace KavoTool {

std::string PublicMessage(int32_t code)
{
    return code == 0 ? "" : Kavo::Push::PushErrorMessage::RebuildPushRsp(code).GetErrDescription();
}

bool WriteServiceReply(Kavo::Parcel& parcel, const Kavo::Push::PushBaseRsp& rsp,
                       const Kavo::Push::RemoteNotificationResult* result)
{
    int32_t code = rsp.GetErrAsInt32();
    if (!parcel.WriteInt32(code) || !parcel.WriteString(PublicMessage(code))) {
        return false;
    }
    return code != 0 || (result != nullptr && result->Marshalling(parcel));
}

bool ReadServiceReply(Kavo::Parcel& parcel, ServiceReply& reply)
{
    if (!parcel.ReadInt32(reply.code) || !parcel.ReadString(reply.message)) {
        return false;
    }
    if (reply.code != 0) {
        return true;
    }
    reply.result = Kavo::Push::RemoteNotificationResult::Unmarshalling(parcel);
    return reply.result != nullptr;
}

}  // namespace KavoTool
