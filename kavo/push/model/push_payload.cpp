#include "kavo/push/model/push_payload.h"

#include <new>
#include <utility>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::Fail;

PushPayload::PushPayload(const std::string& type, const std::string& data) : type_(type), data_(data) {}

bool PushPayload::Marshalling(Parcel& parcel) const
{
    return parcel.WriteString(type_) && parcel.WriteString(data_);
}

sptr<PushPayload> PushPayload::Unmarshalling(Parcel& parcel)
{
    std::string type;
    std::string data;
    if (!parcel.ReadString(type) || !parcel.ReadString(data)) {
        return Fail("PushPayload unmarshalling error");
    }
    auto* payload = new (std::nothrow) PushPayload;
    if (payload == nullptr) {
        return Fail("New PushPayload error");
    }
    payload->type_ = std::move(type);
    payload->data_ = std::move(data);
    return sptr<PushPayload>(payload);
}

bool PushPayload::operator==(const PushPayload& other) const
{
    return type_ == other.type_ && data_ == other.data_;
}

}  // namespace Kavo::Push
