// Parcel: the platform's inter-process byte container. Little-endian; every item is padded to
// a multiple of 4 bytes. Writes grow the buffer up to a maximum capacity (default 1 MiB); a
// write that would pass it writes nothing and returns false. Checked reads (`ReadInt32(v)`)
// return false and leave the read position untouched when too few bytes remain; value reads
// (`ReadInt32()`) return 0 / false / "" and do not move. No read allocates more than the data
// it reads. Not thread-safe: one parcel belongs to one thread at a time. Movable, not copyable;
// a moved-from parcel is empty.
//
//   Parcel parcel;
//   parcel.WriteInt32(7);
//   int32_t v = 0;
//   parcel.ReadInt32(v);  // v == 7
#ifndef KAVO_HOST_IPC_PARCEL_H
#define KAVO_HOST_IPC_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/host/ipc/ref_base.h"

namespace Kavo {

namespace AAFwk {
class WantParams;
}

class KAVO_HOST_EXPORT Parcel {
public:
    static constexpr size_t DEFAULT_MAX_CAPACITY = size_t{1024} * 1024;

    Parcel() = default;
    Parcel(Parcel&& other) noexcept;
    Parcel& operator=(Parcel&& other) noexcept;
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;
    ~Parcel() = default;

    bool WriteBool(bool value);
    bool WriteInt32(int32_t value) { return WriteFixed(value); }
    bool WriteUint32(uint32_t value) { return WriteFixed(value); }
    bool WriteInt64(int64_t value) { return WriteFixed(value); }
    bool WriteUint64(uint64_t value) { return WriteFixed(value); }
    bool WriteDouble(double value) { return WriteFixed(value); }
    // 32-bit byte length n, the n bytes, a zero byte, then zero padding.
    bool WriteString(const std::string& value);
    // Presence word (1, or 0 for null), then p->Marshalling(*this). Never touches the count.
    bool WriteParcelable(const Parcelable* object);
    // Raw bytes, then zero padding to a multiple of 4.
    bool WriteBuffer(const void* data, size_t size);

    bool ReadBool(bool& value);
    bool ReadInt32(int32_t& value) { return ReadFixed(value); }
    bool ReadUint32(uint32_t& value) { return ReadFixed(value); }
    bool ReadInt64(int64_t& value) { return ReadFixed(value); }
    bool ReadUint64(uint64_t& value) { return ReadFixed(value); }
    bool ReadDouble(double& value) { return ReadFixed(value); }
    // Refuses a negative length or one that runs past the data, before allocating anything.
    bool ReadString(std::string& value);
    // `size` raw bytes (and their padding); null when fewer remain. Valid until the next write.
    const uint8_t* ReadBuffer(size_t size);

    bool ReadBool();
    int32_t ReadInt32();
    uint32_t ReadUint32();
    int64_t ReadInt64();
    uint64_t ReadUint64();
    std::string ReadString();

    // Presence word; non-zero reads T::Unmarshalling(*this), zero yields null.
    template <typename T>
    sptr<T> ReadStrongParcelable();

    const uint8_t* GetData() const { return data_.get(); }
    size_t GetDataSize() const { return size_; }
    size_t GetReadPosition() const { return readPos_; }
    size_t GetReadableBytes() const { return size_ - readPos_; }
    bool RewindRead(size_t position);
    size_t GetMaxCapacity() const { return maxCapacity_; }
    // Refused (false) below the data already written.
    bool SetMaxCapacity(size_t maxCapacity);
    // Replaces the contents with exactly these bytes (no padding added) and rewinds reading.
    bool ParseFrom(const uint8_t* data, size_t size);

private:
    // Room for `size` more bytes within the maximum capacity; null (nothing written) when the
    // write would pass it. The bytes it hands out are not initialised: the caller fills them all.
    // Inline for the common case, room already there; the rest goes to AppendSlow.
    uint8_t* Append(size_t size)
    {
        if (size > capacity_ - size_ || size > maxCapacity_ - size_) {
            return AppendSlow(size);
        }
        uint8_t* out = data_.get() + size_;
        size_ += size;
        return out;
    }
    uint8_t* AppendSlow(size_t size);
    void Grow(size_t needed);
    // Fixed-size items are multiples of 4 bytes, so they need no padding. Inline, as records
    // are mostly made of them.
    template <typename T>
    bool WriteFixed(T value)
    {
        static_assert(sizeof(T) % 4 == 0, "a fixed-size item needs no padding");
        uint8_t* out = Append(sizeof(T));
        if (out == nullptr) {
            return false;
        }
        std::memcpy(out, &value, sizeof(T));
        return true;
    }
    template <typename T>
    bool ReadFixed(T& value)
    {
        static_assert(sizeof(T) % 4 == 0, "a fixed-size item needs no padding");
        if (sizeof(T) > size_ - readPos_) {
            return false;
        }
        std::memcpy(&value, data_.get() + readPos_, sizeof(T));
        readPos_ += sizeof(T);
        return true;
    }
    bool WriteRaw(const void* bytes, size_t size);
    bool ReadRaw(void* bytes, size_t size);
    template <typename T>
    T ReadValue();

    // Grown geometrically and never value-initialised: every byte below size_ was written.
    std::unique_ptr<uint8_t[]> data_;
    size_t size_ = 0;
    size_t capacity_ = 0;
    size_t readPos_ = 0;
    size_t maxCapacity_ = DEFAULT_MAX_CAPACITY;
};

template <typename T>
sptr<T> Parcel::ReadStrongParcelable()
{
    int32_t present = 0;
    if (!ReadInt32(present) || present == 0) {
        return nullptr;
    }
    return sptr<T>(T::Unmarshalling(*this));
}

// Nested parameters start at depth 1 so that the depth limit counts every level.
template <>
KAVO_HOST_EXPORT sptr<AAFwk::WantParams> Parcel::ReadStrongParcelable<AAFwk::WantParams>();

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_PARCEL_H
