// RemoteNotificationInfo: the message of a remote notification (type, data and id) that the
// push service hands to an application's notification extension. A plain value; not safe for
// concurrent mutation.
#ifndef KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_INFO_H
#define KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_INFO_H

#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/push_payload.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT RemoteNotificationInfo : public PushPayload {
public:
    RemoteNotificationInfo() = default;
    RemoteNotificationInfo(const std::string& type, const std::string& data, const long& id);
    RemoteNotificationInfo(const RemoteNotificationInfo&) = default;
    RemoteNotificationInfo(RemoteNotificationInfo&&) noexcept = default;
    RemoteNotificationInfo& operator=(const RemoteNotificationInfo&) = default;
    RemoteNotificationInfo& operator=(RemoteNotificationInfo&&) noexcept = default;
    ~RemoteNotificationInfo() override = default;

    long GetId() const { return id_; }

    // The type, the data, then the id as a signed 64-bit word.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<RemoteNotificationInfo> Unmarshalling(Parcel& parcel);

    bool operator==(const RemoteNotificationInfo& other) const;
    bool operator!=(const RemoteNotificationInfo& other) const { return !(*this == other); }

private:
    // The request reads its info in place through ReadFields, without an object of its own.
    friend class RemoteNotificationRequest;

    // Reads the three fields into this info; a failed read logs and reports its own text.
    bool ReadFields(Parcel& parcel);

    long id_ = 0;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_INFO_H
