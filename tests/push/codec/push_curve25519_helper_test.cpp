#include "kavo/push/codec/push_curve25519_helper.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "kavo/host/log/log.h"

namespace {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushCurve25519Helper;
using Kavo::Push::SecureString;

struct PkeyFree {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
using PkeyPtr = std::unique_ptr<EVP_PKEY, PkeyFree>;

uint32_t Word(const SecureString& material, size_t index)
{
    uint32_t value = 0;
    std::memcpy(&value, material.data() + index * sizeof(value), sizeof(value));
    return value;
}

const unsigned char* Bytes(const SecureString& s)
{
    return reinterpret_cast<const unsigned char*>(s.data());
}

// Signs with the private half of the key material, verifies with the exported DER.
bool SignatureVerifies(const SecureString& material, const SecureString& der, const std::string& message)
{
    PkeyPtr priv(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, Bytes(material) + 52, 32));
    const unsigned char* cursor = Bytes(der);
    PkeyPtr pub(d2i_PUBKEY(nullptr, &cursor, static_cast<long>(der.size())));
    if (priv == nullptr || pub == nullptr) {
        return false;
    }
    unsigned char signature[64];
    size_t signatureLength = sizeof(signature);
    auto* msg = reinterpret_cast<const unsigned char*>(message.data());
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> signer(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> verifier(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    return EVP_DigestSignInit(signer.get(), nullptr, nullptr, nullptr, priv.get()) == 1 &&
           EVP_DigestSign(signer.get(), signature, &signatureLength, msg, message.size()) == 1 &&
           EVP_DigestVerifyInit(verifier.get(), nullptr, nullptr, nullptr, pub.get()) == 1 &&
           EVP_DigestVerify(verifier.get(), signature, signatureLength, msg, message.size()) == 1;
}

TEST(PushCurve25519HelperTest, GeneratedKeyMaterialAgreesWithItsDer)
{
    SecureString material;
    SecureString der;
    ASSERT_TRUE(PushCurve25519Helper::GenerateEd25519Key(material, der).Succeed());
    ASSERT_EQ(material.size(), 84u);
    EXPECT_EQ(Word(material, 0), 102u);
    EXPECT_EQ(Word(material, 1), 256u);
    EXPECT_EQ(Word(material, 2), 32u);
    EXPECT_EQ(Word(material, 3), 32u);
    EXPECT_EQ(Word(material, 4), 0u);
    ASSERT_EQ(der.size(), 44u);
    EXPECT_EQ(der.substr(12), material.substr(20, 32)) << "the DER ends with the raw public key";
    EXPECT_TRUE(SignatureVerifies(material, der, "push token request"));

    SecureString otherMaterial;
    SecureString otherDer;
    ASSERT_TRUE(PushCurve25519Helper::GenerateEd25519Key(otherMaterial, otherDer).Succeed());
    EXPECT_NE(otherMaterial.substr(52), material.substr(52)) << "every call makes a new key";
    EXPECT_FALSE(SignatureVerifies(otherMaterial, der, "push token request"));
}

// Each export stops at its first failure and leaves its output untouched.
TEST(PushCurve25519HelperTest, UnusableKeysAreRefused)
{
    const unsigned char raw[32] = {1, 2, 3};
    struct Case {
        const char* behaviour;
        PkeyPtr key;
        bool der;  // GetPublicKeyForDerFormat rather than BuildCurve25519KeyMaterial
        const char* desc;
        const char* logText;
    };
    Case cases[] = {
        {"a public-only key has no private key to read",
         PkeyPtr(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, raw, sizeof(raw))), false,
         "add private key to material failed", "BuildCurve25519KeyMaterial: Add Private Key to Material Failed"},
        {"an Ed448 public key does not fit 32 bytes", PkeyPtr(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED448")), false,
         "add public key to material failed", "BuildCurve25519KeyMaterial: Add Public Key to Material Failed"},
        {"a P-256 key has no raw form", PkeyPtr(EVP_EC_gen("P-256")), false, "add public key to material failed",
         "BuildCurve25519KeyMaterial: Add Public Key to Material Failed"},
        {"a key without contents has no DER", PkeyPtr(EVP_PKEY_new()), true, "public der key length invalid",
         "GetPublicKeyForDerFormat: Public Der Key Length Invalid"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        ASSERT_NE(c.key, nullptr);
        Kavo::LogCapture log;
        SecureString out("untouched");
        PushBaseRsp rsp = c.der ? PushCurve25519Helper::GetPublicKeyForDerFormat(c.key.get(), out)
                                : PushCurve25519Helper::BuildCurve25519KeyMaterial(102, c.key.get(), out);
        EXPECT_EQ(rsp.GetErr(), Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(out, "untouched");
        EXPECT_EQ(log.Texts(), std::vector<std::string>{c.logText});
    }
}

}  // namespace
