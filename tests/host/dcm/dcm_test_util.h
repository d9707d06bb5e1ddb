// Certificate checks shared by the certificate-manager suites: parse DER or PEM, verify a
// chain leaf to root, and read the challenge out of the device certificate.
#ifndef KAVO_TESTS_HOST_DCM_DCM_TEST_UTIL_H
#define KAVO_TESTS_HOST_DCM_DCM_TEST_UTIL_H

#include <openssl/pem.h>
#include <openssl/x509_vfy.h>

#include <memory>
#include <optional>
#include <string>

#include "kavo/host/dcm/dcm_api.h"

namespace KavoTest {

struct X509Free {
    void operator()(X509* cert) const { X509_free(cert); }
};
using X509Ptr = std::unique_ptr<X509, X509Free>;

// Null unless the bytes hold exactly one certificate.
inline X509Ptr ParseDer(const uint8_t* data, size_t size)
{
    const unsigned char* cursor = data;
    X509Ptr cert(d2i_X509(nullptr, &cursor, static_cast<long>(size)));
    return cursor == data + size ? std::move(cert) : nullptr;
}

inline X509Ptr ParsePem(const std::string& pem)
{
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), BIO_free);
    return X509Ptr(PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr));
}

// Trusts `root` alone and verifies `leaf` through `intermediate`: X509_V_OK or the verify error.
inline int VerifyChain(X509* leaf, X509* intermediate, X509* root)
{
    std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> store(X509_STORE_new(), X509_STORE_free);
    std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> ctx(X509_STORE_CTX_new(), X509_STORE_CTX_free);
    STACK_OF(X509)* untrusted = sk_X509_new_null();
    X509_STORE_add_cert(store.get(), root);
    sk_X509_push(untrusted, intermediate);
    X509_STORE_CTX_init(ctx.get(), store.get(), leaf, untrusted);
    X509_STORE_CTX_set_flags(ctx.get(), X509_V_FLAG_X509_STRICT);
    int result = X509_verify_cert(ctx.get()) == 1 ? X509_V_OK : X509_STORE_CTX_get_error(ctx.get());
    sk_X509_free(untrusted);
    return result;
}

// The bytes of the challenge extension (an OCTET STRING inside), or nothing when there is none.
inline std::optional<std::string> ChallengeOf(X509* cert)
{
    ASN1_OBJECT* oid = OBJ_txt2obj(DCM_CHALLENGE_EXTENSION_OID, 1);
    X509_EXTENSION* extension = X509_get_ext(cert, X509_get_ext_by_OBJ(cert, oid, -1));
    ASN1_OBJECT_free(oid);
    ASN1_OCTET_STRING* value = extension ? X509_EXTENSION_get_data(extension) : nullptr;
    const unsigned char* cursor = value ? ASN1_STRING_get0_data(value) : nullptr;
    ASN1_OCTET_STRING* inner = value ? d2i_ASN1_OCTET_STRING(nullptr, &cursor, ASN1_STRING_length(value)) : nullptr;
    std::optional<std::string> challenge;
    if (inner != nullptr) {
        challenge.emplace(reinterpret_cast<const char*>(ASN1_STRING_get0_data(inner)), ASN1_STRING_length(inner));
        ASN1_OCTET_STRING_free(inner);
    }
    return challenge;
}

}  // namespace KavoTest

#endif  // KAVO_TESTS_HOST_DCM_DCM_TEST_UTIL_H
