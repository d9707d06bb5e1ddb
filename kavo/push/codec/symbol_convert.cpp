#include "kavo/push/codec/symbol_convert.h"

#include <arpa/inet.h>

namespace Kavo::Push {

namespace {

constexpr uint32_t LOW_HALF_MASK = 0xFFFFFFFFU;
constexpr unsigned HALF_BITS = 32;
constexpr unsigned BYTE_BITS = 8;
constexpr uint8_t NIBBLE_MASK = 0x0F;
constexpr unsigned NIBBLE_BITS = 4;
constexpr char HEX_DIGITS[] = "0123456789ABCDEF";

// The halves are swapped whichever way the conversion goes, so one function serves both.
uint64_t SwapHalves(uint64_t value, uint32_t (*convert)(uint32_t))
{
    uint64_t high = convert(static_cast<uint32_t>(value & LOW_HALF_MASK));
    uint64_t low = convert(static_cast<uint32_t>(value >> HALF_BITS));
    return (high << HALF_BITS) | low;
}

template <typename T>
std::string BigEndianStream(T value)
{
    std::string out(sizeof(T), '\0');
    for (size_t i = 0; i < sizeof(T); ++i) {
        out[sizeof(T) - 1 - i] = static_cast<char>(static_cast<uint8_t>(value >> (i * BYTE_BITS)));
    }
    return out;
}

// A digit below ':' counts from '0', anything else from 'A'; bytes wrap in 8 bits. Compared
// as unsigned bytes, as on the device, so a byte above 0x7F counts from 'A' on every machine.
uint8_t DigitValue(char ch)
{
    const auto upper = static_cast<uint8_t>(SymbolConvert::ToUpper(ch));
    return upper < ':' ? static_cast<uint8_t>(upper - '0') : static_cast<uint8_t>(upper - 'A' + 10);
}

}  // namespace

uint16_t SymbolConvert::Net2HostUint16(const uint16_t& value)
{
    return ntohs(value);
}

uint16_t SymbolConvert::Host2NetUint16(const uint16_t& value)
{
    return htons(value);
}

uint32_t SymbolConvert::Net2HostUint32(const uint32_t& value)
{
    return ntohl(value);
}

uint32_t SymbolConvert::Host2NetUint32(const uint32_t& value)
{
    return htonl(value);
}

uint64_t SymbolConvert::Net2HostUint64(const uint64_t& value)
{
    return SwapHalves(value, [](uint32_t half) { return ntohl(half); });
}

uint64_t SymbolConvert::Host2NetUint64(const uint64_t& value)
{
    return SwapHalves(value, [](uint32_t half) { return htonl(half); });
}

std::string SymbolConvert::Host2NetStreamUint8(const uint8_t& value)
{
    return BigEndianStream(value);
}

std::string SymbolConvert::Host2NetStreamUint16(const uint16_t& value)
{
    return BigEndianStream(value);
}

std::string SymbolConvert::Host2NetStreamUint32(const uint32_t& value)
{
    return BigEndianStream(value);
}

std::string SymbolConvert::Host2NetStreamUint64(const uint64_t& value)
{
    return BigEndianStream(value);
}

char SymbolConvert::ToUpper(const char& ch)
{
    return (ch >= 'a' && ch <= 'z') ? static_cast<char>(ch - 'a' + 'A') : ch;
}

SecureString SymbolConvert::Byte2Hex(const uint8_t& byte)
{
    const char digits[] = {HEX_DIGITS[byte >> NIBBLE_BITS], HEX_DIGITS[byte & NIBBLE_MASK]};
    return SecureString(digits, sizeof(digits));
}

uint8_t SymbolConvert::Hex2Byte(const char& high, const char& low)
{
    uint8_t highBits = static_cast<uint8_t>((DigitValue(high) & NIBBLE_MASK) << NIBBLE_BITS);
    return static_cast<uint8_t>(highBits + DigitValue(low));
}

}  // namespace Kavo::Push
