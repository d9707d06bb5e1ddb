#include "kavo/push/codec/hex_coder_convert.h"

#include <cstdint>

#include "kavo/push/codec/symbol_convert.h"

namespace Kavo::Push {

SecureString HexCoderConvert::ByteStream2Hex(const SecureString& data)
{
    // Reserved up front so no outgrown, unwiped buffer is left behind.
    SecureString out;
    out.reserve(data.size() * 2);
    for (char byte : data) {
        out += SymbolConvert::Byte2Hex(static_cast<uint8_t>(byte));
    }
    return out;
}

SecureString HexCoderConvert::HexStream2Byte(const SecureString& text)
{
    // The padding comes first, so "A" reads as "0A". It is read in place rather than copied,
    // so no unwiped copy of the text is made.
    const size_t pad = text.size() % 2;
    const size_t digits = text.size() + pad;
    auto digit = [&text, pad](size_t i) { return i < pad ? '0' : text[i - pad]; };
    SecureString out;
    out.reserve(digits / 2);
    for (size_t i = 0; i + 1 < digits; i += 2) {
        out.push_back(static_cast<char>(SymbolConvert::Hex2Byte(digit(i), digit(i + 1))));
    }
    return out;
}

}  // namespace Kavo::Push
