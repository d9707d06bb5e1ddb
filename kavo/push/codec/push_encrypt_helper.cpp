#include "kavo/push/codec/push_encrypt_helper.h"

#include <openssl/sha.h>

#include <utility>

#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

constexpr char LOWER_HEX[] = "0123456789abcdef";
constexpr unsigned int NIBBLE_BITS = 4;
constexpr unsigned int NIBBLE_MASK = 0x0F;

}  // namespace

void PushEncryptHelper::Sha256(const std::string& data, unsigned char* digest)
{
    (void)SHA256(reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest);
}

PushBaseRsp PushEncryptHelper::EncryptWithSha256(const std::string& data, std::string& out)
{
    if (data.empty()) {
        PUSH_LOGW("EncryptWithSha256: Parame is Illeage");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Parame is illeage");
    }
    unsigned char digest[SHA256_DIGEST_BYTES] = {};
    Sha256(data, digest);
    std::string hex(SHA256_DIGEST_BYTES * 2, '0');
    for (size_t i = 0; i < SHA256_DIGEST_BYTES; ++i) {
        hex[2 * i] = LOWER_HEX[digest[i] >> NIBBLE_BITS];
        hex[2 * i + 1] = LOWER_HEX[digest[i] & NIBBLE_MASK];
    }
    out = std::move(hex);
    return PushBaseRsp();
}

PushBaseRsp PushEncryptHelper::EncryptWithSha256Base64(const std::string& data, std::string& out)
{
    if (data.empty()) {
        PUSH_LOGW("EncryptWithSha256Base6: Parame is Illeage");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Parame is illeage");
    }
    unsigned char digest[SHA256_DIGEST_BYTES] = {};
    Sha256(data, digest);
    // Copied rather than moved out, so the encoded digest's own buffer is wiped.
    const SecureString encoded = PushBase64Convert::Base64Encode(digest, SHA256_DIGEST_BYTES);
    out = encoded;
    return PushBaseRsp();
}

}  // namespace Kavo::Push
