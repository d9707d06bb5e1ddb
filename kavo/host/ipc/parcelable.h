// Parcelable: an object that can write itself into a Parcel. Reading is a static
// `Unmarshalling(Parcel&)` of each class, called by Parcel::ReadStrongParcelable<T>.
#ifndef KAVO_HOST_IPC_PARCELABLE_H
#define KAVO_HOST_IPC_PARCELABLE_H

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

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

// Hands out memory from the non-throwing new, as every other allocation of a read does; a
// failure surfaces as std::bad_alloc only inside MakeSharedNothrow, which turns it into null.
template <typename T>
struct NothrowAllocator {
    using value_type = T;
    NothrowAllocator() = default;
    template <typename U>
    NothrowAllocator(const NothrowAllocator<U>& /*other*/) noexcept  // NOLINT(google-explicit-constructor)
    {
    }
    T* allocate(size_t count)
    {
        void* memory = ::operator new(count * sizeof(T), std::nothrow);
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, size_t /*count*/) noexcept { ::operator delete(memory); }
    template <typename U>
    bool operator==(const NothrowAllocator<U>& /*other*/) const noexcept
    {
        return true;
    }
    template <typename U>
    bool operator!=(const NothrowAllocator<U>& /*other*/) const noexcept
    {
        return false;
    }
};

// A shared object and its count in one allocation; null when that allocation fails.
template <typename T, typename... Args>
std::shared_ptr<T> MakeSharedNothrow(Args&&... args)
{
    try {
        return std::allocate_shared<T>(NothrowAllocator<T>(), std::forward<Args>(args)...);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_PARCELABLE_H
