#include "kavo/push/model/msg_time_points.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

bool MsgTimePoints::Marshalling(Parcel& parcel) const
{
    return parcel.WriteInt64(timePoint0_) && parcel.WriteInt64(timePoint1_) && parcel.WriteInt64(timePoint2_) &&
           parcel.WriteInt64(timePoint3_) && parcel.WriteInt64(timePoint4_) && parcel.WriteInt64(timePoint5_);
}

bool MsgTimePoints::ReadFromParcel(Parcel& parcel)
{
    return parcel.ReadInt64(timePoint0_) && parcel.ReadInt64(timePoint1_) && parcel.ReadInt64(timePoint2_) &&
           parcel.ReadInt64(timePoint3_) && parcel.ReadInt64(timePoint4_) && parcel.ReadInt64(timePoint5_);
}

sptr<MsgTimePoints> MsgTimePoints::Unmarshalling(Parcel& parcel)
{
    return internal::ConstructThenFill<MsgTimePoints>(parcel, internal::LogOnly,
                                                      "Read MsgTimePoints from parcel error");
}

bool MsgTimePoints::operator==(const MsgTimePoints& other) const
{
    return timePoint0_ == other.timePoint0_ && timePoint1_ == other.timePoint1_ && timePoint2_ == other.timePoint2_ &&
           timePoint3_ == other.timePoint3_ && timePoint4_ == other.timePoint4_ && timePoint5_ == other.timePoint5_;
}

}  // namespace Kavo::Push
