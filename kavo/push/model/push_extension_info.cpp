#include "kavo/push/model/push_extension_info.h"

#include <utility>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

PushExtensionInfo::PushExtensionInfo(const int& survivalTime, const bool& sync, const PushPayload& payload)
    : survivalTime_(survivalTime), sync_(sync), pushPayload_(payload)
{
}

bool PushExtensionInfo::Marshalling(Parcel& parcel) const
{
    return parcel.WriteBool(sync_) && parcel.WriteInt32(survivalTime_) && parcel.WriteParcelable(&pushPayload_);
}

sptr<PushExtensionInfo> PushExtensionInfo::Unmarshalling(Parcel& parcel)
{
    return internal::AllocateThenRead<PushExtensionInfo>(
        "New extensionMessageInfo error", [&parcel](PushExtensionInfo& info) -> bool {
            const bool headRead = parcel.ReadBool(info.sync_) && parcel.ReadInt32(info.survivalTime_);
            // The payload is read whatever the head gave, so its own failure is logged too.
            sptr<PushPayload> payload = parcel.ReadStrongParcelable<PushPayload>();
            if (payload == nullptr) {
                internal::LogAndReport("PushExtensionInfo::Unmarshalling: ReadStrongParcelable Error");
            }
            if (payload == nullptr || !headRead) {
                return Fail("ExtensionMessageInfo unmarshalling error");
            }
            info.pushPayload_ = std::move(*payload);
            return true;
        });
}

bool PushExtensionInfo::operator==(const PushExtensionInfo& other) const
{
    return survivalTime_ == other.survivalTime_ && sync_ == other.sync_ && pushPayload_ == other.pushPayload_;
}

}  // namespace Kavo::Push
