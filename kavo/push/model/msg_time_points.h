// MsgTimePoints: six signed 64-bit time points of one message, carried by a notification's
// content. A plain value with public members; not safe for concurrent mutation, share it only
// once filled.
#ifndef KAVO_PUSH_MODEL_MSG_TIME_POINTS_H
#define KAVO_PUSH_MODEL_MSG_TIME_POINTS_H

#include <cstdint>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT MsgTimePoints : public Parcelable {
public:
    MsgTimePoints() = default;
    MsgTimePoints(const MsgTimePoints&) = default;
    MsgTimePoints(MsgTimePoints&&) noexcept = default;
    MsgTimePoints& operator=(const MsgTimePoints&) = default;
    MsgTimePoints& operator=(MsgTimePoints&&) noexcept = default;
    ~MsgTimePoints() override = default;

    // Writes the six values in order; false at the first failed write, logging nothing (the
    // owner of the record logs).
    bool Marshalling(Parcel& parcel) const override;
    static sptr<MsgTimePoints> Unmarshalling(Parcel& parcel);
    // Values read before a failed read stay in the object.
    bool ReadFromParcel(Parcel& parcel);

    bool operator==(const MsgTimePoints& other) const;
    bool operator!=(const MsgTimePoints& other) const { return !(*this == other); }

    int64_t timePoint0_ = 0;
    int64_t timePoint1_ = 0;
    int64_t timePoint2_ = 0;
    int64_t timePoint3_ = 0;
    int64_t timePoint4_ = 0;
    int64_t timePoint5_ = 0;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_MSG_TIME_POINTS_H
