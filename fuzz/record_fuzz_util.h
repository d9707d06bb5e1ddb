// Shared oracles of the record fuzzers. Whatever decodes from hostile bytes must encode, decode
// again to an equal record, and encode again to the same bytes. Conversely, a record BUILT from
// the same bytes that Marshalling accepts must read back equal: a writer refuses what its reader
// refuses. Any breach aborts.
#ifndef KAVO_FUZZ_RECORD_FUZZ_UTIL_H
#define KAVO_FUZZ_RECORD_FUZZ_UTIL_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/media/pixel_map.h"
#include "kavo/host/want/want_params.h"

namespace RecordFuzz {

[[noreturn]] inline void Breach(const char* what)
{
    std::fprintf(stderr, "record oracle breached: %s\n", what);
    std::abort();
}

// Failure lines of hostile input would flood standard error; the log still formats them.
inline void QuietLog()
{
    setenv("KAVO_LOG_LEVEL", "fatal", 1);
}

// NaN doubles compare unequal to themselves, so parameters holding one cannot compare equal.
inline bool HasNaN(const Kavo::AAFwk::WantParams* params)
{
    if (params == nullptr) {
        return false;
    }
    for (const auto& [key, value] : params->GetParams()) {
        (void)key;
        if (const auto* d = std::get_if<double>(&value); d != nullptr && std::isnan(*d)) {
            return true;
        }
        if (const auto* nested = std::get_if<std::shared_ptr<Kavo::AAFwk::WantParams>>(&value);
            nested != nullptr && HasNaN(nested->get())) {
            return true;
        }
    }
    return false;
}

inline bool SameBytes(const Kavo::Parcel& a, const Kavo::Parcel& b)
{
    return a.GetDataSize() == b.GetDataSize() && std::memcmp(a.GetData(), b.GetData(), a.GetDataSize()) == 0;
}

template <typename T>
bool Equal(const T& a, const T& b)
{
    return a == b;
}

// Decodes a T from the bytes; when one comes out, checks the round trip. `equal` compares the
// first and second decodings.
template <typename T, typename Equal>
void CheckRoundTrip(const uint8_t* data, size_t size, Equal equal)
{
    Kavo::Parcel parcel;
    if (!parcel.ParseFrom(data, size)) {
        return;
    }
    Kavo::sptr<T> first = T::Unmarshalling(parcel);
    if (first == nullptr) {
        return;
    }
    Kavo::Parcel encoded;
    if (!first->Marshalling(encoded)) {
        Breach("a decoded record does not encode");
    }
    Kavo::sptr<T> second = T::Unmarshalling(encoded);
    if (second == nullptr) {
        Breach("an encoded record does not decode");
    }
    if (encoded.GetReadableBytes() != 0) {
        Breach("decoding leaves part of an encoded record unread");
    }
    Kavo::Parcel again;
    if (!second->Marshalling(again) || !SameBytes(encoded, again)) {
        Breach("a record encodes to different bytes after a round trip");
    }
    if (!equal(*first, *second)) {
        Breach("a record differs after a round trip");
    }
}

template <typename T>
void CheckRoundTrip(const uint8_t* data, size_t size)
{
    CheckRoundTrip<T>(data, size, Equal<T>);
}

// The round trip of a record with parameters: a NaN among them cannot compare equal, so such a
// record only has to encode to the same bytes.
template <typename T, auto GetParams>
void CheckRoundTripWithParams(const uint8_t* data, size_t size)
{
    CheckRoundTrip<T>(data, size, [](const T& a, const T& b) { return a == b || HasNaN((a.*GetParams)().get()); });
}

// Values drawn from the fuzz input, to build records from it; past its end every value is zero
// or empty.
class Source {
public:
    Source(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    uint8_t Byte() { return pos_ < size_ ? data_[pos_++] : 0; }
    bool Bool() { return (Byte() & 1) != 0; }
    int32_t Int32() { return static_cast<int32_t>(Bits(4)); }
    int64_t Int64() { return static_cast<int64_t>(Bits(8)); }
    double Double()
    {
        uint64_t bits = Bits(8);
        double value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        return std::isnan(value) ? 0.0 : value;  // NaN never compares equal
    }
    // A length byte, then that many bytes (fewer at the end of the input).
    std::string String()
    {
        size_t length = Byte();
        std::string text;
        while (length-- > 0 && pos_ < size_) {
            text.push_back(static_cast<char>(data_[pos_++]));
        }
        return text;
    }

    // Parameters nested up to a few levels past the reader's limit.
    std::shared_ptr<Kavo::AAFwk::WantParams> Params(int depth = 1)
    {
        auto params = std::make_shared<Kavo::AAFwk::WantParams>();
        for (int count = Byte() % 4; count > 0; --count) {
            std::string key = String();
            switch (Byte() % 6) {
                case 0:
                    params->SetParam(key, String());
                    break;
                case 1:
                    params->SetParam(key, Bool());
                    break;
                case 2:
                    params->SetParam(key, Int32());
                    break;
                case 3:
                    params->SetParam(key, Int64());
                    break;
                case 4:
                    params->SetParam(key, Double());
                    break;
                default:
                    if (depth < Kavo::AAFwk::WantParams::MAX_DEPTH + 4) {
                        params->SetParam(key, *Params(depth + 1));
                    }
            }
        }
        return params;
    }

    // An image that may be empty: default-built, non-positive or overflowing sizes.
    std::shared_ptr<Kavo::Media::PixelMap> Image()
    {
        const int32_t width = Bool() ? Int32() : Byte() % 20 - 2;
        const int32_t height = Bool() ? Int32() : Byte() % 20 - 2;
        const auto format = static_cast<Kavo::Media::PixelFormat>(Byte() % 8);
        // In a double, so that no product of two 32-bit sizes overflows.
        const double bytes = static_cast<double>(width) * height * Kavo::Media::BytesPerPixel(format);
        if (width > 0 && height > 0 && bytes > MAX_IMAGE_BYTES && bytes <= INT32_MAX) {
            return std::make_shared<Kavo::Media::PixelMap>();  // a valid size, but too big to build here
        }
        auto image = std::make_shared<Kavo::Media::PixelMap>(width, height, format);
        std::vector<uint8_t> pixels(static_cast<size_t>(image->GetByteCount()));
        for (auto& pixel : pixels) {
            pixel = Byte();
        }
        image->SetPixels(std::move(pixels));
        return image;
    }

private:
    static constexpr int64_t MAX_IMAGE_BYTES = 1 << 16;

    uint64_t Bits(size_t bytes)
    {
        uint64_t value = 0;
        for (size_t i = 0; i < bytes; ++i) {
            value |= uint64_t{Byte()} << (8 * i);
        }
        return value;
    }

    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
};

// A built record that Marshalling accepts must read back, with nothing left, equal.
template <typename T, typename Read>
void CheckBuilt(const T& record, Read read)
{
    Kavo::Parcel parcel;
    if (!record.Marshalling(parcel)) {
        return;
    }
    auto back = read(parcel);
    if (back == nullptr) {
        Breach("a record its writer accepted does not read back");
    }
    if (parcel.GetReadableBytes() != 0 || !(*back == record)) {
        Breach("a built record reads back different");
    }
}

template <typename T>
void CheckBuilt(const T& record)
{
    CheckBuilt(record, [](Kavo::Parcel& parcel) { return T::Unmarshalling(parcel); });
}

using Check = void (*)(const uint8_t* data, size_t size);

// Both oracles on one input: decoded from it by `Decode`, and built from it by `Build`.
template <typename T, T (*Build)(Source&), Check Decode = CheckRoundTrip<T>>
void CheckDecodedAndBuilt(const uint8_t* data, size_t size)
{
    Decode(data, size);
    Source source(data, size);
    CheckBuilt(Build(source));
}

// The first byte picks one of `checks`; the rest of the input is its parcel.
template <size_t N>
int Dispatch(const uint8_t* data, size_t size, const Check (&checks)[N])
{
    if (size != 0) {
        checks[data[0] % N](data + 1, size - 1);
    }
    return 0;
}

}  // namespace RecordFuzz

#endif  // KAVO_FUZZ_RECORD_FUZZ_UTIL_H
