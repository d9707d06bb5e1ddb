#include "kavo/host/media/pixel_map.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace {

using Kavo::Parcel;
using Format = Kavo::Media::PixelFormat;
using Kavo::Media::PixelMap;

TEST(PixelMap, ByteCountIsRowBytesTimesHeightOrEmpty)
{
    struct Case {
        int32_t width, height;
        Format format;
        int32_t byteCount;
    };
    const Case cases[] = {
        {16, 16, Format::RGBA_8888, 1024}, {3, 5, Format::RGB_565, 30}, {7, 1, Format::ALPHA_8, 7},
        {-1, 5, Format::RGBA_8888, 0},     {4, 4, Format::UNKNOWN, 0},  {65536, 65536, Format::RGBA_8888, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PixelMap(c.width, c.height, c.format).GetByteCount(), c.byteCount) << c.width << "x" << c.height;
    }
}

TEST(PixelMap, RoundTripKeepsEveryPixelAndEveryCutIsRefused)
{
    PixelMap map(3, 2, Format::RGB_565);
    ASSERT_TRUE(map.SetPixels({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    Parcel full;
    ASSERT_TRUE(map.Marshalling(full));
    for (size_t cut = 0; cut <= full.GetDataSize(); ++cut) {
        Parcel parcel;
        parcel.ParseFrom(full.GetData(), cut);
        std::unique_ptr<PixelMap> back(PixelMap::Unmarshalling(parcel));
        EXPECT_EQ(back != nullptr && *back == map, cut == full.GetDataSize()) << "cut at " << cut;
    }
}

TEST(PixelMap, MalformedHeadersAreRefusedQuickly)
{
    struct Case {
        const char* name;
        int32_t width, height, format, count;
        size_t trailing;  // bytes after the header
    };
    const int32_t rgba = static_cast<int32_t>(Format::RGBA_8888);
    const Case cases[] = {
        {"negative height", 4, -4, rgba, -64, 64},
        {"unknown format", 4, 4, 99, 64, 64},
        {"byte count does not match", 4, 4, rgba, 60, 64},
        {"data runs past the parcel", 4, 4, rgba, 64, 32},
        {"65536 x 65536 overflows", 65536, 65536, rgba, 0, 16},
        {"row bytes alone overflow 32 bits", 1684275456, 1677746944, rgba, 0, 0},
        {"huge but consistent size, no data", 16384, 32767, rgba, 2147352576, 0},
    };
    for (const auto& c : cases) {
        Parcel parcel;
        for (int32_t word : {c.width, c.height, c.format, c.count}) {
            parcel.WriteInt32(word);
        }
        parcel.WriteBuffer(std::vector<uint8_t>(c.trailing).data(), c.trailing);
        auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(std::unique_ptr<PixelMap>(PixelMap::Unmarshalling(parcel)), nullptr) << c.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100)) << c.name;
    }
}

}  // namespace
