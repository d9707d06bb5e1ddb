#include "kavo/push/model/remote_want_agent.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

bool RemoteWantAgent::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteString(abilityName_)) {
        return Fail("RemoteWantAgent::Marshallin: Write AbilityName Error");
    }
    const bool hasParameters = !parameters_.empty();
    if (!parcel.WriteBool(hasParameters)) {
        return Fail("RemoteWantAgent::Marshallin: Write Valid Error");
    }
    if (hasParameters && !parcel.WriteString(parameters_)) {
        return Fail("Write parameters error");
    }
    return true;
}

bool RemoteWantAgent::ReadFromParcel(Parcel& parcel)
{
    if (!parcel.ReadString(abilityName_)) {
        return Fail("RemoteWantAgent::ReadFromParcel: Read AbilityName Error");
    }
    bool hasParameters = false;
    if (!parcel.ReadBool(hasParameters)) {
        return Fail("RemoteWantAgent::ReadFromParcel: Read Valid Error");
    }
    if (hasParameters && !parcel.ReadString(parameters_)) {
        return Fail("RemoteWantAgent::ReadFromParcel: Read Parameters Error");
    }
    return true;
}

sptr<RemoteWantAgent> RemoteWantAgent::Unmarshalling(Parcel& parcel)
{
    return internal::ConstructThenFill<RemoteWantAgent>(parcel, internal::LogAndReport, "New remoteWantAgent error");
}

bool RemoteWantAgent::operator==(const RemoteWantAgent& other) const
{
    return abilityName_ == other.abilityName_ && parameters_ == other.parameters_;
}

}  // namespace Kavo::Push
