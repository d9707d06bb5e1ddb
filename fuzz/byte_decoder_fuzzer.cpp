// Reads big-endian values at fuzzed offsets and checks each decoder against a byte-by-byte
// reading: success exactly when the bytes are there, the same value, `out` untouched otherwise.
// Input: one byte choosing the decoder, one byte of offset, one byte of run length, then data.
// Offset and length bytes from 0xF0 up stand for SIZE_MAX minus their low four bits, so sums
// that wrap around are tried too.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <type_traits>

#include "kavo/push/codec/byte_decoder.h"

namespace {

using Kavo::Push::ByteDecoder;
using Kavo::Push::PushBaseRsp;

[[maybe_unused]] const int QUIET_LOG = setenv("KAVO_LOG_LEVEL", "fatal", 0);
constexpr uint64_t SENTINEL = 0xA5A5A5A5A5A5A5A5ULL;

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// Sizes past half the address space never fit data that is held in memory.
bool Fits(const std::string& data, size_t offset, size_t width)
{
    return offset < SIZE_MAX / 2 && width < SIZE_MAX / 2 && data.size() >= offset + width;
}

size_t Extent(uint8_t byte)
{
    return byte < 0xF0 ? byte : SIZE_MAX - (byte & 0x0F);
}

uint64_t BigEndian(const std::string& data, size_t offset, size_t width)
{
    uint64_t value = 0;
    for (size_t i = 0; i < width; ++i) {
        value = (value << 8) | static_cast<uint8_t>(data[offset + i]);
    }
    return value;
}

template <typename T>
void CheckFixed(PushBaseRsp (*decode)(T&, const std::string&, const size_t&), const std::string& data, size_t offset)
{
    auto out = static_cast<T>(SENTINEL);
    PushBaseRsp rsp = decode(out, data, offset);
    bool fits = Fits(data, offset, sizeof(T));
    Check(rsp.Succeed() == fits);
    uint64_t expected = fits ? BigEndian(data, offset, sizeof(T)) : static_cast<uint64_t>(static_cast<T>(SENTINEL));
    Check(static_cast<uint64_t>(static_cast<std::make_unsigned_t<T>>(out)) ==
          (expected & (sizeof(T) == 8 ? ~0ULL : (1ULL << (sizeof(T) * 8)) - 1)));
}

void CheckRun(const std::string& data, size_t length, size_t offset)
{
    std::string out = "sentinel";
    PushBaseRsp rsp = ByteDecoder::DecodeAsByte(out, data, length, offset);
    bool fits = Fits(data, offset, length);
    Check(rsp.Succeed() == fits);
    Check(out == (fits ? data.substr(offset, length) : "sentinel"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    if (size < 3) {
        return 0;
    }
    const size_t offset = Extent(bytes[1]);
    const size_t length = Extent(bytes[2]);
    const std::string data(reinterpret_cast<const char*>(bytes) + 3, size - 3);
    switch (bytes[0] % 9) {
        case 0:
            CheckFixed(&ByteDecoder::DecodeAsChar, data, offset);
            break;
        case 1:
            CheckFixed(&ByteDecoder::DecodeAsInt8, data, offset);
            break;
        case 2:
            CheckFixed(&ByteDecoder::DecodeAsUint16, data, offset);
            break;
        case 3:
            CheckFixed(&ByteDecoder::DecodeAsInt16, data, offset);
            break;
        case 4:
            CheckFixed(&ByteDecoder::DecodeAsUint32, data, offset);
            break;
        case 5:
            CheckFixed(&ByteDecoder::DecodeAsInt32, data, offset);
            break;
        case 6:
            CheckFixed(&ByteDecoder::DecodeAsUint64, data, offset);
            break;
        case 7:
            CheckFixed(&ByteDecoder::DecodeAsInt64, data, offset);
            break;
        default:
            CheckRun(data, length, offset);
            break;
    }
    return 0;
}
