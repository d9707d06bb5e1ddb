#include "kavo/push/codec/push_curve25519_helper.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kavo/host/log/log.h"

namespace {

using namespace Kavo::Push;
using Texts = std::vector<std::string>;

using PkeyPtr = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

TEST(Curve25519Test, GeneratedKeyMaterialAgreesWithItsDer)
{
    SecureString material, der;
    ASSERT_TRUE(PushCurve25519Helper::GenerateEd25519Key(material, der).Succeed());
    ASSERT_EQ(material.size(), 84u);
    const auto* words = reinterpret_cast<const uint32_t*>(material.data());
    EXPECT_EQ(std::vector<uint32_t>(words, words + 5), (std::vector<uint32_t>{102, 256, 32, 32, 0}));
    ASSERT_EQ(der.size(), 44u);
    EXPECT_EQ(der.substr(0, 12), std::string("\x30\x2a\x30\x05\x06\x03\x2b\x65\x70\x03\x21\x00", 12));
    EXPECT_EQ(der.substr(12), material.substr(20, 32)) << "the DER ends with the raw public key";
    PkeyPtr priv(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr,
                                              reinterpret_cast<const unsigned char*>(material.data()) + 52, 32),
                 EVP_PKEY_free);
    unsigned char derived[32];
    size_t length = sizeof(derived);
    ASSERT_EQ(EVP_PKEY_get_raw_public_key(priv.get(), derived, &length), 1);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(derived), 32), material.substr(20, 32)) << "one key pair";
}

TEST(Curve25519Test, UnusableKeysAreRefused)
{
    const unsigned char raw[32] = {1, 2, 3};
    struct Case {
        PkeyPtr key;
        bool der;  // GetPublicKeyForDerFormat rather than BuildCurve25519KeyMaterial
        const char* desc;
        const char* logText;
    };
    const Case cases[] = {
        {PkeyPtr(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, raw, 32), EVP_PKEY_free), false,
         "add private key to material failed", "BuildCurve25519KeyMaterial: Add Private Key to Material Failed"},
        {PkeyPtr(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED448"), EVP_PKEY_free), false,
         "add public key to material failed", "BuildCurve25519KeyMaterial: Add Public Key to Material Failed"},
        {PkeyPtr(EVP_PKEY_new(), EVP_PKEY_free), true, "public der key length invalid",
         "GetPublicKeyForDerFormat: Public Der Key Length Invalid"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.desc);
        Kavo::LogCapture log;
        SecureString out("untouched");
        PushBaseRsp rsp = c.der ? PushCurve25519Helper::GetPublicKeyForDerFormat(c.key.get(), out)
                                : PushCurve25519Helper::BuildCurve25519KeyMaterial(102, c.key.get(), out);
        EXPECT_EQ(rsp.GetErr(), PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(out, "untouched");
        EXPECT_EQ(log.Texts(), Texts{c.logText});
    }
}

}  // namespace
