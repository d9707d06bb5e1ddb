// Decodes arbitrary text as hex and checks it against the digit rules: one byte per two
// characters after padding, and clean hex text re-encodes to its upper-case, padded self.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kavo/push/codec/hex_coder_convert.h"

namespace {

using Kavo::Push::HexCoderConvert;
using Kavo::Push::SecureString;

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

bool AllHex(const SecureString& text)
{
    for (char ch : text) {
        if (std::isxdigit(static_cast<unsigned char>(ch)) == 0) {
            return false;
        }
    }
    return true;
}

SecureString UpperPadded(const SecureString& text)
{
    SecureString out(text.size() % 2 == 0 ? "" : "0");
    for (char ch : text) {
        out.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(ch))));
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    SecureString input(reinterpret_cast<const char*>(data), size);
    SecureString bytes = HexCoderConvert::HexStream2Byte(input);
    Check(bytes.size() == (size + 1) / 2);
    if (AllHex(input)) {
        Check(HexCoderConvert::ByteStream2Hex(bytes) == UpperPadded(input));
    }
    SecureString hex = HexCoderConvert::ByteStream2Hex(input);
    Check(hex.size() == size * 2);
    Check(HexCoderConvert::HexStream2Byte(hex) == input);
    return 0;
}
