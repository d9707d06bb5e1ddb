#include "kavo/host/media/pixel_map.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace {

using Kavo::Parcel;
using Kavo::Media::PixelFormat;
using Kavo::Media::PixelMap;

TEST(PixelMapTest, ByteCountIsRowBytesTimesHeight)
{
    struct Case {
        int32_t width;
        int32_t height;
        PixelFormat format;
        int32_t byteCount;
    };
    const Case cases[] = {
        {16, 16, PixelFormat::RGBA_8888, 1024}, {3, 5, PixelFormat::RGB_565, 30}, {7, 1, PixelFormat::ALPHA_8, 7},
        {0, 5, PixelFormat::RGBA_8888, 0},      {-1, 5, PixelFormat::RGBA_8888, 0},
        {65536, 65536, PixelFormat::RGBA_8888, 0},  // overflows 32 bits: an empty map
        {4, 4, PixelFormat::UNKNOWN, 0},
    };
    for (const auto& c : cases) {
        PixelMap map(c.width, c.height, c.format);
        EXPECT_EQ(map.GetByteCount(), c.byteCount) << c.width << "x" << c.height;
    }
}

TEST(PixelMapTest, RoundTripKeepsEveryPixel)
{
    PixelMap map(3, 2, PixelFormat::RGB_565);
    std::vector<uint8_t> pixels(12);
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<uint8_t>(i * 7);
    }
    ASSERT_TRUE(map.SetPixels(pixels));
    EXPECT_FALSE(map.SetPixels(std::vector<uint8_t>(11)));
    Parcel parcel;
    ASSERT_TRUE(map.Marshalling(parcel));
    std::unique_ptr<PixelMap> back(PixelMap::Unmarshalling(parcel));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(*back, map);
    EXPECT_EQ(parcel.GetReadableBytes(), 0u);
}

// Header words: width, height, format, byte count, then `trailing` bytes of data.
std::unique_ptr<PixelMap> Decode(int32_t w, int32_t h, int32_t format, int32_t count, size_t trailing)
{
    Parcel parcel;
    parcel.WriteInt32(w);
    parcel.WriteInt32(h);
    parcel.WriteInt32(format);
    parcel.WriteInt32(count);
    std::vector<uint8_t> data(trailing);
    parcel.WriteBuffer(data.data(), data.size());
    return std::unique_ptr<PixelMap>(PixelMap::Unmarshalling(parcel));
}

TEST(PixelMapTest, MalformedHeadersAreRefusedQuickly)
{
    struct Case {
        const char* name;
        int32_t w, h, format, count;
        size_t trailing;
    };
    const int32_t rgba = static_cast<int32_t>(PixelFormat::RGBA_8888);
    const Case cases[] = {
        {"zero width", 0, 4, rgba, 0, 0},
        {"negative height", 4, -4, rgba, -64, 64},
        {"unknown format", 4, 4, 99, 64, 64},
        {"byte count does not match", 4, 4, rgba, 60, 64},
        {"data runs past the parcel", 4, 4, rgba, 64, 32},
        {"65536 x 65536 overflows", 65536, 65536, rgba, 0, 16},
        {"row bytes alone overflow 32 bits", 1684275456, 1677746944, rgba, 0, 0},
        {"huge but consistent size, no data", 16384, 32767, rgba, 2147352576, 0},
    };
    for (const auto& c : cases) {
        auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(Decode(c.w, c.h, c.format, c.count, c.trailing), nullptr) << c.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100)) << c.name;
    }
}

TEST(PixelMapTest, TruncatedParcelIsRefusedAtEveryCut)
{
    PixelMap map(2, 2, PixelFormat::RGBA_8888);
    Parcel full;
    ASSERT_TRUE(map.Marshalling(full));
    for (size_t cut = 0; cut < full.GetDataSize(); ++cut) {
        Parcel parcel;
        parcel.ParseFrom(full.GetData(), cut);
        std::unique_ptr<PixelMap> back(PixelMap::Unmarshalling(parcel));
        EXPECT_EQ(back, nullptr) << "cut at " << cut;
    }
}

}  // namespace
