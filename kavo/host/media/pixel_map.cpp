#include "kavo/host/media/pixel_map.h"

#include <limits>
#include <new>

namespace Kavo::Media {

namespace {

// Row bytes x height, or 0 when a size is not positive, the format is unknown or the product
// does not fit the 32-bit byte count.
int32_t ComputeByteCount(int32_t width, int32_t height, PixelFormat format)
{
    int64_t bpp = BytesPerPixel(format);
    if (width <= 0 || height <= 0 || bpp == 0) {
        return 0;
    }
    // Row bytes are checked first, so the product below stays within 62 bits.
    int64_t rowBytes = static_cast<int64_t>(width) * bpp;
    if (rowBytes > std::numeric_limits<int32_t>::max()) {
        return 0;
    }
    int64_t total = rowBytes * static_cast<int64_t>(height);
    if (total > std::numeric_limits<int32_t>::max()) {
        return 0;
    }
    return static_cast<int32_t>(total);
}

}  // namespace

int32_t BytesPerPixel(PixelFormat format)
{
    switch (format) {
        case PixelFormat::RGBA_8888:
            return 4;
        case PixelFormat::RGB_565:
            return 2;
        case PixelFormat::ALPHA_8:
            return 1;
        case PixelFormat::UNKNOWN:
            break;
    }
    return 0;
}

PixelMap::PixelMap(int32_t width, int32_t height, PixelFormat format)
{
    int32_t count = ComputeByteCount(width, height, format);
    if (count == 0) {
        return;
    }
    width_ = width;
    height_ = height;
    format_ = format;
    pixels_.assign(static_cast<size_t>(count), 0);
}

int32_t PixelMap::GetRowBytes() const
{
    return width_ * BytesPerPixel(format_);
}

int32_t PixelMap::GetByteCount() const
{
    return static_cast<int32_t>(pixels_.size());
}

bool PixelMap::SetPixels(std::vector<uint8_t> pixels)
{
    if (pixels.size() != pixels_.size()) {
        return false;
    }
    pixels_ = std::move(pixels);
    return true;
}

bool PixelMap::operator==(const PixelMap& other) const
{
    return width_ == other.width_ && height_ == other.height_ && format_ == other.format_ && pixels_ == other.pixels_;
}

bool PixelMap::Marshalling(Parcel& parcel) const
{
    // An empty image is refused, as Unmarshalling would refuse it, before anything is written.
    if (pixels_.empty()) {
        return false;
    }
    return parcel.WriteInt32(width_) && parcel.WriteInt32(height_) &&
           parcel.WriteInt32(static_cast<int32_t>(format_)) && parcel.WriteInt32(GetByteCount()) &&
           parcel.WriteBuffer(pixels_.data(), pixels_.size());
}

bool PixelMap::ReadImage(Parcel& parcel, ParcelImage& image)
{
    int32_t format = 0;
    if (!parcel.ReadInt32(image.width) || !parcel.ReadInt32(image.height) || !parcel.ReadInt32(format) ||
        !parcel.ReadInt32(image.byteCount)) {
        return false;
    }
    image.format = static_cast<PixelFormat>(format);
    int32_t expected = ComputeByteCount(image.width, image.height, image.format);
    // The byte count is checked against the remaining data before the pixels are allocated.
    if (expected == 0 || image.byteCount != expected ||
        static_cast<size_t>(image.byteCount) > parcel.GetReadableBytes()) {
        return false;
    }
    image.bytes = parcel.ReadBuffer(static_cast<size_t>(image.byteCount));
    return image.bytes != nullptr;
}

void PixelMap::Fill(const ParcelImage& image)
{
    width_ = image.width;
    height_ = image.height;
    format_ = image.format;
    pixels_.assign(image.bytes, image.bytes + image.byteCount);
}

PixelMap* PixelMap::Unmarshalling(Parcel& parcel)
{
    ParcelImage image;
    if (!ReadImage(parcel, image)) {
        return nullptr;
    }
    auto* map = new (std::nothrow) PixelMap;
    if (map == nullptr) {
        return nullptr;
    }
    map->Fill(image);
    return map;
}

std::shared_ptr<PixelMap> PixelMap::UnmarshallingShared(Parcel& parcel)
{
    ParcelImage image;
    if (!ReadImage(parcel, image)) {
        return nullptr;
    }
    std::shared_ptr<PixelMap> map = MakeSharedNothrow<PixelMap>();
    if (map == nullptr) {
        return nullptr;
    }
    map->Fill(image);
    return map;
}

}  // namespace Kavo::Media
