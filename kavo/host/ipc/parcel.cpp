#include "kavo/host/ipc/parcel.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "kavo/host/want/want_params.h"

namespace Kavo {

namespace {

constexpr size_t ALIGNMENT = 4;
// Most records, a notification with its icon included, fit in the first allocation; larger
// ones double from there.
constexpr size_t INITIAL_CAPACITY = 2048;

size_t Padded(size_t size)
{
    return (size + ALIGNMENT - 1) & ~(ALIGNMENT - 1);
}

}  // namespace

Parcel::Parcel(Parcel&& other) noexcept
    : data_(std::move(other.data_)), size_(std::exchange(other.size_, 0)), capacity_(std::exchange(other.capacity_, 0)),
      readPos_(std::exchange(other.readPos_, 0)), maxCapacity_(std::exchange(other.maxCapacity_, DEFAULT_MAX_CAPACITY))
{
}

Parcel& Parcel::operator=(Parcel&& other) noexcept
{
    if (this != &other) {
        data_ = std::move(other.data_);
        size_ = std::exchange(other.size_, 0);
        capacity_ = std::exchange(other.capacity_, 0);
        readPos_ = std::exchange(other.readPos_, 0);
        maxCapacity_ = std::exchange(other.maxCapacity_, DEFAULT_MAX_CAPACITY);
    }
    return *this;
}

bool Parcel::SetMaxCapacity(size_t maxCapacity)
{
    if (maxCapacity < size_) {
        return false;
    }
    maxCapacity_ = maxCapacity;
    return true;
}

uint8_t* Parcel::AppendSlow(size_t size)
{
    if (size > maxCapacity_ || size_ > maxCapacity_ - size) {
        return nullptr;
    }
    const size_t needed = size_ + size;
    if (needed > capacity_) {
        Grow(needed);
    }
    uint8_t* out = data_.get() + size_;
    size_ = needed;
    return out;
}

void Parcel::Grow(size_t needed)
{
    // Room is left past a large item (a long string, an image) for the small items that follow
    // it, so the buffer does not grow again, copying the item, at the next write. AppendSlow keeps
    // `needed` within the maximum, so the sum cannot wrap and the result is never below it.
    const size_t headroom = std::min(INITIAL_CAPACITY, maxCapacity_ - needed);
    const size_t grown = std::min(std::max(needed + headroom, capacity_ * 2), maxCapacity_);
    // Default-initialised on purpose: the bytes are copied or written before they are read.
    std::unique_ptr<uint8_t[]> bigger(new uint8_t[grown]);
    if (size_ != 0) {
        std::memcpy(bigger.get(), data_.get(), size_);
    }
    data_ = std::move(bigger);
    capacity_ = grown;
}

bool Parcel::WriteRaw(const void* bytes, size_t size)
{
    const size_t padded = Padded(size);
    if (padded < size) {
        return false;
    }
    if (padded == 0) {
        return true;  // nothing to write, and an empty parcel may have no buffer yet
    }
    uint8_t* out = Append(padded);
    if (out == nullptr) {
        return false;
    }
    std::memcpy(out, bytes, size);
    std::memset(out + size, 0, padded - size);
    return true;
}

bool Parcel::WriteBool(bool value)
{
    return WriteInt32(value ? 1 : 0);
}

bool Parcel::WriteString(const std::string& value)
{
    if (value.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max() - 1)) {
        return false;
    }
    // Length, bytes and terminator go in as one write, so a failure leaves nothing behind.
    const size_t size = sizeof(int32_t) + value.size();
    const size_t padded = Padded(size + 1);
    uint8_t* out = Append(padded);
    if (out == nullptr) {
        return false;
    }
    auto length = static_cast<int32_t>(value.size());
    std::memcpy(out, &length, sizeof(length));
    if (!value.empty()) {
        // The terminator is the first byte of the zeroing below.
        std::memcpy(out + sizeof(length), value.data(), value.size());  // NOLINT(bugprone-not-null-terminated-result)
    }
    std::memset(out + size, 0, padded - size);
    return true;
}

bool Parcel::WriteParcelable(const Parcelable* object)
{
    if (object == nullptr) {
        return WriteInt32(0);
    }
    return WriteInt32(1) && object->Marshalling(*this);
}

bool Parcel::WriteBuffer(const void* data, size_t size)
{
    if (data == nullptr && size != 0) {
        return false;
    }
    return WriteRaw(data, size);
}

bool Parcel::ReadRaw(void* bytes, size_t size)
{
    size_t padded = Padded(size);
    if (padded > GetReadableBytes()) {
        return false;
    }
    std::memcpy(bytes, data_.get() + readPos_, size);
    readPos_ += padded;
    return true;
}

const uint8_t* Parcel::ReadBuffer(size_t size)
{
    size_t padded = Padded(size);
    if (padded < size || padded > GetReadableBytes()) {
        return nullptr;
    }
    const uint8_t* bytes = data_.get() + readPos_;
    readPos_ += padded;
    return bytes;
}

bool Parcel::ReadBool(bool& value)
{
    int32_t word = 0;
    if (!ReadInt32(word)) {
        return false;
    }
    value = word != 0;
    return true;
}

bool Parcel::ReadString(std::string& value)
{
    size_t start = readPos_;
    int32_t length = 0;
    if (!ReadInt32(length)) {
        return false;
    }
    // The length is checked against what remains before anything is allocated.
    if (length < 0 || Padded(static_cast<size_t>(length) + 1) > GetReadableBytes()) {
        readPos_ = start;
        return false;
    }
    const auto* text = reinterpret_cast<const char*>(data_.get() + readPos_);
    const auto size = static_cast<size_t>(length);
    if (size > value.capacity()) {
        value = std::string(text, size);  // built at its size at once, cheaper than regrowing `value`
    } else {
        value.assign(text, size);
    }
    readPos_ += Padded(static_cast<size_t>(length) + 1);
    return true;
}

template <typename T>
T Parcel::ReadValue()
{
    T value{};
    // A short parcel yields the zero value and leaves the position where it was.
    if (!ReadRaw(&value, sizeof(value))) {
        return T{};
    }
    return value;
}

bool Parcel::ReadBool()
{
    return ReadValue<int32_t>() != 0;
}

int32_t Parcel::ReadInt32()
{
    return ReadValue<int32_t>();
}

uint32_t Parcel::ReadUint32()
{
    return ReadValue<uint32_t>();
}

int64_t Parcel::ReadInt64()
{
    return ReadValue<int64_t>();
}

uint64_t Parcel::ReadUint64()
{
    return ReadValue<uint64_t>();
}

std::string Parcel::ReadString()
{
    std::string value;
    ReadString(value);
    return value;
}

bool Parcel::RewindRead(size_t position)
{
    if (position > size_) {
        return false;
    }
    readPos_ = position;
    return true;
}

bool Parcel::ParseFrom(const uint8_t* data, size_t size)
{
    if ((data == nullptr && size != 0) || size > maxCapacity_) {
        return false;
    }
    // A new buffer first, so a parcel may be rebuilt from its own bytes.
    std::unique_ptr<uint8_t[]> bytes(size == 0 ? nullptr : new uint8_t[size]);
    if (size != 0) {
        std::memcpy(bytes.get(), data, size);
    }
    data_ = std::move(bytes);
    size_ = size;
    capacity_ = size;
    readPos_ = 0;
    return true;
}

template <>
sptr<AAFwk::WantParams> Parcel::ReadStrongParcelable<AAFwk::WantParams>()
{
    int32_t present = 0;
    if (!ReadInt32(present) || present == 0) {
        return nullptr;
    }
    return sptr<AAFwk::WantParams>(AAFwk::WantParams::Unmarshalling(*this, 1));
}

}  // namespace Kavo
