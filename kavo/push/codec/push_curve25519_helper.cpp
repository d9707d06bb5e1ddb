#include "kavo/push/codec/push_curve25519_helper.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "kavo/host/secure/bounded_memory.h"
#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

constexpr uint32_t KEY_BITS = 256;
constexpr size_t RAW_KEY_BYTES = 32;
constexpr size_t HEADER_BYTES = 20;
constexpr int MAX_DER_BYTES = 5 * 1024 * 1024;

// Zeroes the scratch copy of the keys on every way out.
struct ScratchWipe {
    std::vector<unsigned char>& buffer;
    ~ScratchWipe() { (void)Kavo::memset_s(buffer.data(), buffer.size(), 0, buffer.size()); }
};

void PutWord(std::vector<unsigned char>& buffer, size_t index, uint32_t value)
{
    std::memcpy(buffer.data() + index * sizeof(uint32_t), &value, sizeof(value));
}

}  // namespace

PushBaseRsp PushCurve25519Helper::GenerateEd25519Key(SecureString& keyMaterial, SecureString& publicKeyDer)
{
    PushBaseRsp rsp(PUSH_SUCCESS);
    EVP_PKEY* key = nullptr;
    EVP_PKEY_CTX* ctx = EVP_PKEY_CTX_new_id(EVP_PKEY_ED25519, nullptr);
    if (ctx == nullptr) {
        PUSH_LOGE("GenerateEd25519Key: CTX New Failed");
        rsp = PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "ctx new failed");
    } else if (EVP_PKEY_keygen_init(ctx) != 1) {
        PUSH_LOGE("GenerateEd25519Key: Keygen Init Failed");
        rsp = PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "keygen init failed");
    } else if (EVP_PKEY_keygen(ctx, &key) != 1) {
        PUSH_LOGE("GenerateEd25519Key: Keygen Failed");
        rsp = PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "keygen failed");
    } else {
        rsp = BuildCurve25519KeyMaterial(ED25519_KEY_ALG, key, keyMaterial);
        if (!rsp.Succeed()) {
            PUSH_LOGE("Save ed25519 key material failed");
        }
        // The DER export decides the result, even after a failed key material.
        rsp = GetPublicKeyForDerFormat(key, publicKeyDer);
        if (!rsp.Succeed()) {
            PUSH_LOGE("Get ed25519 public key for der format failed");
        }
    }
    EVP_PKEY_CTX_free(ctx);
    EVP_PKEY_free(key);
    return rsp;
}

PushBaseRsp PushCurve25519Helper::BuildCurve25519KeyMaterial(const unsigned int& keyAlg, const EVP_PKEY* key,
                                                             SecureString& keyMaterial)
{
    std::vector<unsigned char> scratch(KEY_MATERIAL_BYTES, 0);
    ScratchWipe wipe{scratch};
    size_t publicLength = RAW_KEY_BYTES;
    size_t privateLength = RAW_KEY_BYTES;
    if (EVP_PKEY_get_raw_public_key(key, scratch.data() + HEADER_BYTES, &publicLength) != 1) {
        PUSH_LOGE("BuildCurve25519KeyMaterial: Add Public Key to Material Failed");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "add public key to material failed");
    }
    if (EVP_PKEY_get_raw_private_key(key, scratch.data() + HEADER_BYTES + publicLength, &privateLength) != 1) {
        PUSH_LOGE("BuildCurve25519KeyMaterial: Add Private Key to Material Failed");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "add private key to material failed");
    }
    PutWord(scratch, 0, keyAlg);
    PutWord(scratch, 1, KEY_BITS);
    PutWord(scratch, 2, static_cast<uint32_t>(publicLength));
    PutWord(scratch, 3, static_cast<uint32_t>(privateLength));
    keyMaterial = SecureString(reinterpret_cast<const char*>(scratch.data()), scratch.size());
    return PushBaseRsp(PUSH_SUCCESS);
}

PushBaseRsp PushCurve25519Helper::GetPublicKeyForDerFormat(const EVP_PKEY* key, SecureString& publicKeyDer)
{
    int length = i2d_PUBKEY(key, nullptr);
    if (length < 1 || length > MAX_DER_BYTES) {
        PUSH_LOGE("GetPublicKeyForDerFormat: Public Der Key Length Invalid");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "public der key length invalid");
    }
    std::vector<unsigned char> der(static_cast<size_t>(length), 0);
    unsigned char* cursor = der.data();
    if (i2d_PUBKEY(key, &cursor) != length) {
        PUSH_LOGE("GetPublicKeyForDerFormat: Public Der Key Get Failed");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "public der key get failed");
    }
    publicKeyDer = SecureString(reinterpret_cast<const char*>(der.data()), der.size());
    return PushBaseRsp(PUSH_SUCCESS);
}

}  // namespace Kavo::Push
