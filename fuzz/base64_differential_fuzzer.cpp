// Holds the fast Base64 and digest paths to their references on arbitrary input: encoding and
// decoding against the OpenSSL filter chain (same bytes, same emptiness), the hex and Base64
// digests against the SHA-256 context calls with stream formatting. The input is decoded as
// it comes and once more mapped onto the alphabet and '=', so well-formed text and text a
// character away from it are both common.
#define OPENSSL_SUPPRESS_DEPRECATED  // the context calls are the reference

#include <openssl/sha.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <string>

#include "kavo/push/codec/internal/bio_base64.h"
#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/codec/push_encrypt_helper.h"

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::PushEncryptHelper;
using Kavo::Push::SecureString;
namespace internal = Kavo::Push::internal;

[[maybe_unused]] const int QUIET_LOG = setenv("KAVO_LOG_LEVEL", "fatal", 0);

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

void CheckDecode(const SecureString& text)
{
    Check(PushBase64Convert::Base64Decode(text) == internal::BioBase64Decode(text));
}

void CheckDigests(const std::string& data)
{
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256_CTX context;
    SHA256_Init(&context);
    SHA256_Update(&context, data.data(), data.size());
    SHA256_Final(digest, &context);
    std::stringstream stream;
    stream << std::hex << std::setfill('0');
    for (unsigned char byte : digest) {
        stream << std::setw(2) << static_cast<unsigned int>(byte);
    }
    std::string hex = "untouched", base64 = "untouched";
    Check(PushEncryptHelper::EncryptWithSha256(data, hex).Succeed() == !data.empty());
    Check(PushEncryptHelper::EncryptWithSha256Base64(data, base64).Succeed() == !data.empty());
    Check(hex == (data.empty() ? "untouched" : stream.str()));
    Check(base64 == (data.empty() ? "untouched" : internal::BioBase64Encode(digest, sizeof(digest))));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const char symbols[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
    SecureString input(reinterpret_cast<const char*>(data), size);
    SecureString mapped(input);
    for (char& ch : mapped) {
        ch = symbols[static_cast<uint8_t>(ch) % (sizeof(symbols) - 1)];
    }
    CheckDecode(input);
    CheckDecode(mapped);
    const unsigned int length = static_cast<unsigned int>(size);
    Check(PushBase64Convert::Base64Encode(data, length) == internal::BioBase64Encode(data, length));
    CheckDigests(input);
    return 0;
}
