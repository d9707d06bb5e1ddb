// SymbolConvert: byte-order swaps, big-endian byte streams and single hex digits.
// All functions are stateless and may be called from any thread.
#ifndef KAVO_PUSH_CODEC_SYMBOL_CONVERT_H
#define KAVO_PUSH_CODEC_SYMBOL_CONVERT_H

#include <cstdint>
#include <string>

#include "kavo/push/codec/secure_string.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT SymbolConvert {
public:
    static uint16_t Net2HostUint16(const uint16_t& value);
    static uint16_t Host2NetUint16(const uint16_t& value);
    static uint32_t Net2HostUint32(const uint32_t& value);
    static uint32_t Host2NetUint32(const uint32_t& value);
    // Each 32-bit half is converted and the halves change places.
    static uint64_t Net2HostUint64(const uint64_t& value);
    static uint64_t Host2NetUint64(const uint64_t& value);

    // The value as 1, 2, 4 or 8 bytes, most significant first.
    static std::string Host2NetStreamUint8(const uint8_t& value);
    static std::string Host2NetStreamUint16(const uint16_t& value);
    static std::string Host2NetStreamUint32(const uint32_t& value);
    static std::string Host2NetStreamUint64(const uint64_t& value);

    // ASCII 'a'..'z' to upper case; every other byte as it is.
    static char ToUpper(const char& ch);
    // Two upper-case hex digits, high nibble first.
    static SecureString Byte2Hex(const uint8_t& byte);
    // Case-insensitive; a character that is no hex digit gives a wrong but fixed value.
    static uint8_t Hex2Byte(const char& high, const char& low);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_SYMBOL_CONVERT_H
