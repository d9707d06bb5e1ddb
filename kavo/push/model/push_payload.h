// PushPayload: the smallest message record, a type and a data string. It is also the base of
// the notification and VoIP message infos. A plain value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_PUSH_PAYLOAD_H
#define KAVO_PUSH_MODEL_PUSH_PAYLOAD_H

#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushPayload : public Parcelable {
public:
    PushPayload() = default;
    PushPayload(const std::string& type, const std::string& data);
    PushPayload(const PushPayload&) = default;
    PushPayload(PushPayload&&) noexcept = default;
    PushPayload& operator=(const PushPayload&) = default;
    PushPayload& operator=(PushPayload&&) noexcept = default;
    ~PushPayload() override = default;

    std::string GetType() const { return type_; }
    std::string GetData() const { return data_; }

    // The type, then the data; false at the first failed write, logging nothing.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<PushPayload> Unmarshalling(Parcel& parcel);

    bool operator==(const PushPayload& other) const;
    bool operator!=(const PushPayload& other) const { return !(*this == other); }

protected:
    // The derived infos' readers move what they read straight into these.
    std::string type_;
    std::string data_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_PUSH_PAYLOAD_H
