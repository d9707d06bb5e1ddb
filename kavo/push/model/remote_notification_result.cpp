#include "kavo/push/model/remote_notification_result.h"

#include <new>
#include <utility>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

RemoteNotificationResult::RemoteNotificationResult(const RemoteNotificationContent& content,
                                                   const std::shared_ptr<AAFwk::WantParams>& parameters)
    : content_(content), parameters_(parameters)
{
}

bool RemoteNotificationResult::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteParcelable(&content_)) {
        return Fail("RemoteNotificationResult::Marshalling: Write Content Error");
    }
    const bool hasParameters = parameters_ != nullptr;
    if (!parcel.WriteBool(hasParameters)) {
        return Fail("RemoteNotificationResult::Marshalling: Write Valid Error");
    }
    if (hasParameters && !parcel.WriteParcelable(parameters_.get())) {
        return Fail("Write wantParams error");
    }
    return true;
}

bool RemoteNotificationResult::ReadContent(Parcel& parcel, RemoteNotificationContent& content)
{
    // Read as its own parcelable would be, but into the caller's content instead of a new object.
    int32_t present = 0;
    if (!parcel.ReadInt32(present) || present == 0) {
        return Fail("RemoteNotificationResult::ReadFromParcel: Read Content Error");
    }
    if (!content.ReadFromParcel(parcel)) {
        internal::LogAndReport("RemoteNotificationContent Unmarshalling Error");
        return Fail("RemoteNotificationResult::ReadFromParcel: Read Content Error");
    }
    return true;
}

bool RemoteNotificationResult::ReadParameters(Parcel& parcel)
{
    bool hasParameters = false;
    if (!parcel.ReadBool(hasParameters)) {
        return Fail("RemoteNotificationResult::ReadFromParcel: Read Valid from Parcel Error");
    }
    if (!hasParameters) {
        return true;
    }
    return internal::ReadWantParams(parcel, parameters_, "Read wantParams error", "New wantParams error");
}

// A result read again gets a whole new content, and keeps its old one when that read fails.
bool RemoteNotificationResult::ReadFromParcel(Parcel& parcel)
{
    RemoteNotificationContent content;
    if (!ReadContent(parcel, content)) {
        return false;
    }
    content_ = std::move(content);
    return ReadParameters(parcel);
}

bool RemoteNotificationResult::ReadNew(Parcel& parcel)
{
    return ReadContent(parcel, content_) && ReadParameters(parcel);
}

sptr<RemoteNotificationResult> RemoteNotificationResult::Unmarshalling(Parcel& parcel)
{
    return internal::ConstructThenFill<RemoteNotificationResult, &RemoteNotificationResult::ReadNew>(
        parcel, internal::LogAndReport, "New remoteNotificationResult error");
}

bool RemoteNotificationResult::operator==(const RemoteNotificationResult& other) const
{
    return content_ == other.content_ && internal::OptionalEqual(parameters_, other.parameters_);
}

}  // namespace Kavo::Push
