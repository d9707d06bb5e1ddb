// PixelMap: an image of the platform's image library: size, pixel format and pixel bytes.
// A value; not safe for concurrent mutation.
//
// Parcel form: width, height, format, byte count (int32 each), then the bytes (padded).
#ifndef KAVO_HOST_MEDIA_PIXEL_MAP_H
#define KAVO_HOST_MEDIA_PIXEL_MAP_H

#include <cstdint>
#include <memory>
#include <vector>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"

namespace Kavo::Media {

enum class PixelFormat : int32_t {
    UNKNOWN = 0,
    RGB_565 = 2,
    RGBA_8888 = 3,
    ALPHA_8 = 6,
};

// Bytes per pixel of a format; 0 for UNKNOWN or any value the library does not know.
KAVO_HOST_EXPORT int32_t BytesPerPixel(PixelFormat format);

class KAVO_HOST_EXPORT PixelMap : public Parcelable {
public:
    PixelMap() = default;
    // A zero-filled image; an empty map (byte count 0) when the sizes are not positive or
    // their product overflows 32 bits.
    PixelMap(int32_t width, int32_t height, PixelFormat format);

    int32_t GetWidth() const { return width_; }
    int32_t GetHeight() const { return height_; }
    PixelFormat GetPixelFormat() const { return format_; }
    int32_t GetRowBytes() const;
    // Row bytes x height: the size of the pixel data.
    int32_t GetByteCount() const;
    const std::vector<uint8_t>& GetPixels() const { return pixels_; }
    // False (nothing changed) unless `pixels` has exactly GetByteCount() bytes.
    bool SetPixels(std::vector<uint8_t> pixels);

    bool operator==(const PixelMap& other) const;
    bool operator!=(const PixelMap& other) const { return !(*this == other); }

    // False, writing nothing, for an empty image (byte count 0), which Unmarshalling refuses.
    bool Marshalling(Parcel& parcel) const override;
    // Caller owns the result; null for non-positive sizes, an unknown format, dimensions that
    // overflow, a byte count that does not match, or pixel data that runs past the parcel.
    static PixelMap* Unmarshalling(Parcel& parcel);
    // The same read into a shared image (one allocation for the image and its count); null
    // where Unmarshalling gives null or the image cannot be allocated.
    static std::shared_ptr<PixelMap> UnmarshallingShared(Parcel& parcel);

private:
    // An image checked and found in a parcel, its pixel bytes still there.
    struct ParcelImage {
        int32_t width = 0;
        int32_t height = 0;
        PixelFormat format = PixelFormat::UNKNOWN;
        const uint8_t* bytes = nullptr;
        int32_t byteCount = 0;
    };
    static bool ReadImage(Parcel& parcel, ParcelImage& image);
    void Fill(const ParcelImage& image);

    int32_t width_ = 0;
    int32_t height_ = 0;
    PixelFormat format_ = PixelFormat::UNKNOWN;
    std::vector<uint8_t> pixels_;
};

}  // namespace Kavo::Media

#endif  // KAVO_HOST_MEDIA_PIXEL_MAP_H
