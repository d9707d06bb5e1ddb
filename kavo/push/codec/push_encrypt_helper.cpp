// The digest uses OpenSSL's low-level SHA-256 context calls, which OpenSSL 3 marks
// deprecated; they stay, and the warning is silenced for this file alone.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "kavo/push/codec/push_encrypt_helper.h"

#include <openssl/sha.h>

#include <iomanip>
#include <sstream>

#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

constexpr int HEX_WIDTH = 2;

}  // namespace

void PushEncryptHelper::Sha256(const std::string& data, unsigned char* digest)
{
    SHA256_CTX context;
    SHA256_Init(&context);
    SHA256_Update(&context, data.data(), data.size());
    SHA256_Final(digest, &context);
}

PushBaseRsp PushEncryptHelper::EncryptWithSha256(const std::string& data, std::string& out)
{
    if (data.empty()) {
        PUSH_LOGW("EncryptWithSha256: Parame is Illeage");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Parame is illeage");
    }
    unsigned char digest[SHA256_DIGEST_BYTES] = {};
    Sha256(data, digest);
    std::stringstream stream;
    stream << std::hex << std::setfill('0');
    for (unsigned char byte : digest) {
        stream << std::setw(HEX_WIDTH) << static_cast<unsigned int>(byte);
    }
    out = stream.str();
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
    out = PushBase64Convert::Base64Encode(digest, SHA256_DIGEST_BYTES);
    return PushBaseRsp();
}

}  // namespace Kavo::Push
