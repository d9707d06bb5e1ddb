// PushExtensionInfo: an ordinary push message as the push service hands it to an application's
// push extension: the payload, whether it is handled synchronously, and its survival time.
// A plain value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_PUSH_EXTENSION_INFO_H
#define KAVO_PUSH_MODEL_PUSH_EXTENSION_INFO_H

#include <cstdint>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/push_payload.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushExtensionInfo : public Parcelable {
public:
    PushExtensionInfo() = default;
    PushExtensionInfo(const int& survivalTime, const bool& sync, const PushPayload& payload);
    PushExtensionInfo(const PushExtensionInfo&) = default;
    PushExtensionInfo(PushExtensionInfo&&) noexcept = default;
    PushExtensionInfo& operator=(const PushExtensionInfo&) = default;
    PushExtensionInfo& operator=(PushExtensionInfo&&) noexcept = default;
    ~PushExtensionInfo() override = default;

    int32_t GetSurvivalTime() const { return survivalTime_; }
    bool GetSync() const { return sync_; }
    PushPayload GetPushPayload() const { return pushPayload_; }

    // On the wire the sync flag comes first, then the survival time, then the payload behind
    // its presence word; false at the first failed write, logging nothing.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<PushExtensionInfo> Unmarshalling(Parcel& parcel);

    bool operator==(const PushExtensionInfo& other) const;
    bool operator!=(const PushExtensionInfo& other) const { return !(*this == other); }

private:
    int32_t survivalTime_ = 0;
    bool sync_ = false;
    PushPayload pushPayload_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_PUSH_EXTENSION_INFO_H
