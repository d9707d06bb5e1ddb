// Images from hostile bytes: whatever decodes must encode and decode again to an equal image,
// and an image built from the bytes that the writer accepts must read back equal.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "fuzz/record_fuzz_util.h"
#include "kavo/host/media/pixel_map.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    RecordFuzz::Source source(data, size);
    RecordFuzz::CheckBuilt(*source.Image(), [](Kavo::Parcel& parcel) {
        return std::unique_ptr<Kavo::Media::PixelMap>(Kavo::Media::PixelMap::Unmarshalling(parcel));
    });
    Kavo::Parcel parcel;
    if (!parcel.ParseFrom(data, size)) {
        return 0;
    }
    std::unique_ptr<Kavo::Media::PixelMap> first(Kavo::Media::PixelMap::Unmarshalling(parcel));
    if (first == nullptr) {
        return 0;
    }
    Kavo::Parcel again;
    if (!first->Marshalling(again)) {
        std::abort();
    }
    std::unique_ptr<Kavo::Media::PixelMap> second(Kavo::Media::PixelMap::Unmarshalling(again));
    if (second == nullptr || *second != *first) {
        std::abort();
    }
    return 0;
}
