#include "kavo/host/media/pixel_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

// The largest allocation asked for since the last reset: a reader checks sizes first. Every
// scalar form is replaced, so each new pairs with its delete (also under a sanitizer); delete is
// kept out of line so that the compiler does not pair malloc with new.
namespace {
size_t largestAllocation = 0;
}

void* operator new(std::size_t size)
{
    largestAllocation = std::max(largestAllocation, size);
    if (void* p = std::malloc(size == 0 ? 1 : size)) {
        return p;
    }
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return ::operator new(size);
    } catch (...) {
        return nullptr;
    }
}

[[gnu::noinline]] void operator delete(void* p) noexcept
{
    std::free(p);
}

[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}

namespace {

using Kavo::Parcel;
using Format = Kavo::Media::PixelFormat;
using Kavo::Media::PixelMap;

TEST(PixelMap, MalformedHeadersAreRefusedBeforeAnythingTheirSizeIsAllocated)
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
        largestAllocation = 0;
        std::unique_ptr<PixelMap> read(PixelMap::Unmarshalling(parcel));
        EXPECT_LE(largestAllocation, parcel.GetDataSize()) << c.name;
        EXPECT_EQ(read, nullptr) << c.name;
    }
}

}  // namespace
