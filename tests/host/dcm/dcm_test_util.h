// Certificate checks shared by the certificate-manager suites: parse DER or PEM, verify a
// chain leaf to root, and read the challenge out of the device certificate.
#ifndef KAVO_TESTS_HOST_DCM_DCM_TEST_UTIL_H
#define KAVO_TESTS_HOST_DCM_DCM_TEST_UTIL_H

#include <openssl/bio.h>
#include <openssl/objects.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
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

// Trusts `root` alone and verifies `leaf` through `intermediate`; returns the verify error
// (X509_V_OK when the chain holds).
inline int VerifyChain(X509* leaf, X509* intermediate, X509* root)
{
    std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> store(X509_STORE_new(), X509_STORE_free);
    std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)>
        untrusted(sk_X509_new_null(), [](STACK_OF(X509)* s) { sk_X509_free(s); });
    std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> ctx(X509_STORE_CTX_new(), X509_STORE_CTX_free);
    X509_STORE_add_cert(store.get(), root);
    sk_X509_push(untrusted.get(), intermediate);
    X509_STORE_CTX_init(ctx.get(), store.get(), leaf, untrusted.get());
    X509_STORE_CTX_set_flags(ctx.get(), X509_V_FLAG_X509_STRICT);
    return X509_verify_cert(ctx.get()) == 1 ? X509_V_OK : X509_STORE_CTX_get_error(ctx.get());
}

// The bytes of the challenge extension, or nothing when the certificate has none.
inline std::optional<std::string> ChallengeOf(X509* cert)
{
    std::unique_ptr<ASN1_OBJECT, decltype(&ASN1_OBJECT_free)> oid(OBJ_txt2obj(DCM_CHALLENGE_EXTENSION_OID, 1),
                                                                  ASN1_OBJECT_free);
    int index = X509_get_ext_by_OBJ(cert, oid.get(), -1);
    if (index < 0) {
        return std::nullopt;
    }
    ASN1_OCTET_STRING* value = X509_EXTENSION_get_data(X509_get_ext(cert, index));
    const unsigned char* cursor = ASN1_STRING_get0_data(value);
    std::unique_ptr<ASN1_OCTET_STRING, decltype(&ASN1_OCTET_STRING_free)> inner(
        d2i_ASN1_OCTET_STRING(nullptr, &cursor, ASN1_STRING_length(value)), ASN1_OCTET_STRING_free);
    if (inner == nullptr) {
        return std::nullopt;
    }
    return std::string(reinterpret_cast<const char*>(ASN1_STRING_get0_data(inner.get())),
                       static_cast<size_t>(ASN1_STRING_length(inner.get())));
}

}  // namespace KavoTest

#endif  // KAVO_TESTS_HOST_DCM_DCM_TEST_UTIL_H
