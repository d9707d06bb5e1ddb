// Intrusive reference counting of the platform: RefBase and its strong pointer sptr<T>.
// The count is atomic, so one object may be shared across threads; an sptr itself is a value
// owned by one thread at a time.
#ifndef KAVO_HOST_IPC_REF_BASE_H
#define KAVO_HOST_IPC_REF_BASE_H

#include <atomic>
#include <cstddef>
#include <utility>

#include "kavo/host/host_export.h"

namespace Kavo {

class KAVO_HOST_EXPORT RefBase {
public:
    RefBase() = default;
    // Records are copied all the time; a copy is a new object with a count of its own.
    RefBase(const RefBase&) noexcept : strongCount_(0) {}
    // Assignment keeps each object's own count, so there is nothing to copy.
    RefBase& operator=(const RefBase&) noexcept { return *this; }  // NOLINT(cert-oop54-cpp)
    virtual ~RefBase() = default;

    void AcquireStrong() const noexcept { strongCount_.fetch_add(1, std::memory_order_relaxed); }
    // Deletes the object when the last strong reference lets go.
    void ReleaseStrong() const noexcept
    {
        if (strongCount_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }
    int StrongCount() const noexcept { return strongCount_.load(std::memory_order_relaxed); }

private:
    mutable std::atomic<int> strongCount_{0};
};

template <typename T>
class sptr {
public:
    sptr() noexcept = default;
    sptr(std::nullptr_t) noexcept {}
    sptr(T* ptr) noexcept : ptr_(ptr) { Acquire(); }
    sptr(const sptr& other) noexcept : ptr_(other.ptr_) { Acquire(); }
    sptr(sptr&& other) noexcept : ptr_(std::exchange(other.ptr_, nullptr)) {}
    template <typename U>
    sptr(const sptr<U>& other) noexcept : ptr_(other.GetRefPtr())
    {
        Acquire();
    }
    ~sptr() { Release(); }

    sptr& operator=(sptr other) noexcept
    {
        std::swap(ptr_, other.ptr_);
        return *this;
    }
    sptr& operator=(std::nullptr_t) noexcept
    {
        Release();
        ptr_ = nullptr;
        return *this;
    }

    T* GetRefPtr() const noexcept { return ptr_; }
    T* operator->() const noexcept { return ptr_; }
    T& operator*() const noexcept { return *ptr_; }
    explicit operator bool() const noexcept { return ptr_ != nullptr; }
    void clear() noexcept { *this = nullptr; }

    template <typename U>
    bool operator==(const sptr<U>& other) const noexcept
    {
        return ptr_ == other.GetRefPtr();
    }
    template <typename U>
    bool operator!=(const sptr<U>& other) const noexcept
    {
        return ptr_ != other.GetRefPtr();
    }
    bool operator==(std::nullptr_t) const noexcept { return ptr_ == nullptr; }
    bool operator!=(std::nullptr_t) const noexcept { return ptr_ != nullptr; }

private:
    void Acquire() const noexcept
    {
        if (ptr_ != nullptr) {
            ptr_->AcquireStrong();
        }
    }
    void Release() noexcept
    {
        if (ptr_ != nullptr) {
            std::exchange(ptr_, nullptr)->ReleaseStrong();
        }
    }

    T* ptr_ = nullptr;
};

template <typename T>
bool operator==(std::nullptr_t, const sptr<T>& p) noexcept
{
    return p == nullptr;
}

template <typename T>
bool operator!=(std::nullptr_t, const sptr<T>& p) noexcept
{
    return p != nullptr;
}

template <typename T, typename... Args>
sptr<T> MakeSptr(Args&&... args)
{
    return sptr<T>(new T(std::forward<Args>(args)...));
}

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_REF_BASE_H
