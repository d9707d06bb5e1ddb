// Parameter maps from hostile bytes: whatever decodes must encode and decode again to an
// equal map, and a map built from the bytes that the writer accepts must read back equal.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "fuzz/record_fuzz_util.h"
#include "kavo/host/want/want_params.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    RecordFuzz::Source source(data, size);
    RecordFuzz::CheckBuilt(*source.Params(), [](Kavo::Parcel& parcel) {
        return std::unique_ptr<Kavo::AAFwk::WantParams>(Kavo::AAFwk::WantParams::Unmarshalling(parcel, 1));
    });
    Kavo::Parcel parcel;
    if (!parcel.ParseFrom(data, size)) {
        return 0;
    }
    std::unique_ptr<Kavo::AAFwk::WantParams> first(Kavo::AAFwk::WantParams::Unmarshalling(parcel, 1));
    if (first == nullptr) {
        return 0;
    }
    Kavo::Parcel again;
    if (!first->Marshalling(again)) {
        std::abort();
    }
    std::unique_ptr<Kavo::AAFwk::WantParams> second(Kavo::AAFwk::WantParams::Unmarshalling(again, 1));
    // NaN doubles compare unequal to themselves, so compare the bytes of a third encoding.
    Kavo::Parcel third;
    if (second == nullptr || !second->Marshalling(third) || third.GetDataSize() != again.GetDataSize() ||
        std::memcmp(third.GetData(), again.GetData(), again.GetDataSize()) != 0) {
        std::abort();
    }
    return 0;
}
