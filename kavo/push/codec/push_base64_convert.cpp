#include "kavo/push/codec/push_base64_convert.h"

#include <openssl/evp.h>

#include <array>
#include <climits>

#include "kavo/push/codec/internal/bio_base64.h"

namespace Kavo::Push {

namespace {

constexpr size_t GROUP_CHARS = 4;
constexpr size_t GROUP_BYTES = 3;
// The block calls count in int: past this input the text would not fit one.
constexpr unsigned int MAX_BLOCK_INPUT = INT_MAX / GROUP_CHARS * GROUP_BYTES;

constexpr std::array<bool, 256> AlphabetTable()
{
    std::array<bool, 256> table{};
    for (int c = 'A'; c <= 'Z'; ++c) {
        table[c] = table[c - 'A' + 'a'] = true;
    }
    for (int c = '0'; c <= '9'; ++c) {
        table[c] = true;
    }
    table['+'] = table['/'] = true;
    return table;
}

constexpr std::array<bool, 256> IN_ALPHABET = AlphabetTable();

// The number of '=' at the end when the text is whole groups of the standard alphabet with at
// most two final '=', else -1. Only such text may bypass the filter chain.
int CanonicalPadding(const SecureString& text)
{
    const size_t n = text.size();
    if (n == 0 || n % GROUP_CHARS != 0 || n > static_cast<size_t>(INT_MAX)) {
        return -1;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    const size_t padding = bytes[n - 1] != '=' ? 0 : bytes[n - 2] != '=' ? 1 : 2;
    bool valid = true;
    for (size_t i = 0; i < n - padding; ++i) {
        valid &= IN_ALPHABET[bytes[i]];
    }
    return valid ? static_cast<int>(padding) : -1;
}

}  // namespace

SecureString PushBase64Convert::Base64Encode(const SecureString& data)
{
    return Base64Encode(reinterpret_cast<const unsigned char*>(data.data()), static_cast<unsigned int>(data.size()));
}

// The block encoder writes exactly the text of the no-newline chain; refusals and inputs too
// large for it go to the chain, which answers them.
SecureString PushBase64Convert::Base64Encode(const unsigned char* data, unsigned int length)
{
    if (data == nullptr || length == 0 || length > MAX_BLOCK_INPUT) {
        return internal::BioBase64Encode(data, length);
    }
    SecureString text((length + GROUP_BYTES - 1) / GROUP_BYTES * GROUP_CHARS, '\0');
    // It also writes a terminating zero, which lands on the string's own terminator.
    (void)EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), data, static_cast<int>(length));
    return text;
}

// Canonical text decodes in one block call, which also yields a zero byte per '='; anything
// else keeps the chain's answer, malformed text included.
SecureString PushBase64Convert::Base64Decode(const SecureString& text)
{
    const int padding = CanonicalPadding(text);
    if (padding < 0) {
        return internal::BioBase64Decode(text);
    }
    SecureString bytes(text.size() / GROUP_CHARS * GROUP_BYTES, '\0');
    (void)EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                          reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    bytes.resize(bytes.size() - static_cast<size_t>(padding));
    return bytes;
}

}  // namespace Kavo::Push
