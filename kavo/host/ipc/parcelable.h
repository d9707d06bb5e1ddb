// Parcelable: an object that can write itself into a Parcel. Reading is a static
// `Unmarshalling(Parcel&)` of each class, called by Parcel::ReadStrongParcelable<T>.
#ifndef KAVO_HOST_IPC_PARCELABLE_H
#define KAVO_HOST_IPC_PARCELABLE_H

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/ref_base.h"

namespace Kavo {

class Parcel;

class KAVO_HOST_EXPORT Parcelable : public virtual RefBase {
public:
    Parcelable() = default;
    Parcelable(const Parcelable&) = default;
    Parcelable& operator=(const Parcelable&) = default;
    ~Parcelable() override = default;

    virtual bool Marshalling(Parcel& parcel) const = 0;
};

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_PARCELABLE_H
