#include "kavo/push/model/voip_result.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

VoIPResult::VoIPResult(const std::shared_ptr<AAFwk::WantParams>& parameters) : parameters_(parameters) {}

bool VoIPResult::Marshalling(Parcel& parcel) const
{
    const bool hasParameters = parameters_ != nullptr;
    if (!parcel.WriteBool(hasParameters)) {
        return Fail("VoIPResult::Marshalling: Write Valid Error");
    }
    if (hasParameters && !parcel.WriteParcelable(parameters_.get())) {
        return Fail("Write wantParams error");
    }
    return true;
}

bool VoIPResult::ReadFromParcel(Parcel& parcel)
{
    bool hasParameters = false;
    if (!parcel.ReadBool(hasParameters)) {
        return Fail("Read Valid is False");
    }
    if (!hasParameters) {
        return true;
    }
    return internal::ReadWantParams(parcel, parameters_, "Read wantParams error", "New wantParams error");
}

sptr<VoIPResult> VoIPResult::Unmarshalling(Parcel& parcel)
{
    return internal::ConstructThenFill<VoIPResult>(parcel, internal::LogAndReport, "New voipResult error");
}

bool VoIPResult::operator==(const VoIPResult& other) const
{
    return internal::OptionalEqual(parameters_, other.parameters_);
}

}  // namespace Kavo::Push
