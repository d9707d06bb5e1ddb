// Shared oracle of the record fuzzers: whatever decodes from hostile bytes must encode, decode
// again to an equal record, and encode again to the same bytes. Any breach aborts.
#ifndef KAVO_FUZZ_RECORD_FUZZ_UTIL_H
#define KAVO_FUZZ_RECORD_FUZZ_UTIL_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <variant>

#include "kavo/host/ipc/parcel.h"
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

using Check = void (*)(const uint8_t* data, size_t size);

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
