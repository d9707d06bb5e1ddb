// PushCurve25519Helper: makes an Ed25519 key pair and hands it out as an 84-byte key-material
// blob and as the DER SubjectPublicKeyInfo of the public key. Stateless; callable from any
// thread.
//
// Key material, 32-bit words in host byte order: algorithm, key bits (256), public-key length,
// private-key length, a reserved 0; then the raw public key and the raw private key.
//
//   SecureString material;
//   SecureString der;
//   PushBaseRsp rsp = PushCurve25519Helper::GenerateEd25519Key(material, der);
#ifndef KAVO_PUSH_CODEC_PUSH_CURVE25519_HELPER_H
#define KAVO_PUSH_CODEC_PUSH_CURVE25519_HELPER_H

#include <openssl/types.h>

#include <cstddef>

#include "kavo/push/codec/secure_string.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushCurve25519Helper {
public:
    static constexpr unsigned int ED25519_KEY_ALG = 102;
    static constexpr size_t KEY_MATERIAL_BYTES = 84;

    // The result is the DER export's: a failed key material alone is logged but not returned.
    static PushBaseRsp GenerateEd25519Key(SecureString& keyMaterial, SecureString& publicKeyDer);
    // Stops at the first key that cannot be read, leaving `keyMaterial` untouched.
    static PushBaseRsp BuildCurve25519KeyMaterial(const unsigned int& keyAlg, const EVP_PKEY* key,
                                                  SecureString& keyMaterial);
    static PushBaseRsp GetPublicKeyForDerFormat(const EVP_PKEY* key, SecureString& publicKeyDer);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_PUSH_CURVE25519_HELPER_H
