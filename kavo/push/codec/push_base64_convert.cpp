#include "kavo/push/codec/push_base64_convert.h"

#include <openssl/evp.h>

#include <array>
#include <climits>
#include <cstring>

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

// The number of '=' at the end when the text may be canonical: whole groups, at most two final
// '=' and none before them, and no character the block decoder would trim from either end.
// Every other character is checked by the block decoder itself, which refuses all but the
// alphabet and '='. Any other text is -1.
int CandidatePadding(const SecureString& text)
{
    const size_t n = text.size();
    if (n == 0 || n % GROUP_CHARS != 0 || n > static_cast<size_t>(INT_MAX)) {
        return -1;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    const size_t padding = bytes[n - 1] != '=' ? 0 : bytes[n - 2] != '=' ? 1 : 2;
    const bool endsClean = IN_ALPHABET[bytes[0]] && (padding > 0 || IN_ALPHABET[bytes[n - 1]]);
    return endsClean && std::memchr(bytes, '=', n - padding) == nullptr ? static_cast<int>(padding) : -1;
}

// Each block helper returns its one named result, so it is built in place in the caller's
// string.
SecureString EncodeBlock(const unsigned char* data, unsigned int length)
{
    SecureString text((length + GROUP_BYTES - 1) / GROUP_BYTES * GROUP_CHARS, '\0');
    // It also writes a terminating zero, which lands on the string's own terminator.
    (void)EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), data, static_cast<int>(length));
    return text;
}

// The block call yields a zero byte per '=', which is cut off. Text it refuses is not
// canonical, so the filter chain answers it.
SecureString DecodeBlock(const SecureString& text, size_t padding)
{
    SecureString bytes(text.size() / GROUP_CHARS * GROUP_BYTES, '\0');
    if (EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size())) < 0) {
        bytes = internal::BioBase64Decode(text);
    } else {
        bytes.resize(bytes.size() - padding);
    }
    return bytes;
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
    return EncodeBlock(data, length);
}

// Canonical text decodes in one block call; anything else keeps the chain's answer, malformed
// text included.
SecureString PushBase64Convert::Base64Decode(const SecureString& text)
{
    const int padding = CandidatePadding(text);
    if (padding < 0) {
        return internal::BioBase64Decode(text);
    }
    return DecodeBlock(text, static_cast<size_t>(padding));
}

}  // namespace Kavo::Push
