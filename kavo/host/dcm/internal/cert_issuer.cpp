#include "kavo/host/dcm/internal/cert_issuer.h"

#include <openssl/asn1.h>
#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/objects.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>

#include "kavo/host/dcm/dcm_api.h"

namespace Kavo::internal {

namespace {

struct PkeyFree {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct X509Free {
    void operator()(X509* cert) const { X509_free(cert); }
};
struct ExtFree {
    void operator()(X509_EXTENSION* ext) const { X509_EXTENSION_free(ext); }
};
struct ObjFree {
    void operator()(ASN1_OBJECT* obj) const { ASN1_OBJECT_free(obj); }
};
struct OctetFree {
    void operator()(ASN1_OCTET_STRING* str) const { ASN1_OCTET_STRING_free(str); }
};
using PkeyPtr = std::unique_ptr<EVP_PKEY, PkeyFree>;
using X509Ptr = std::unique_ptr<X509, X509Free>;

constexpr long SECONDS_PER_DAY = 86400;
constexpr long BACKDATE_SECONDS = 3600;
constexpr int SERIAL_BITS = 63;

// What one certificate says about itself; the issuer signs it.
struct CertProfile {
    const char* commonName;
    const char* basicConstraints;
    const char* keyUsage;
    long validDays;
};

constexpr CertProfile ROOT_PROFILE = {"Kavo Host Root CA", "critical,CA:TRUE", "critical,keyCertSign,cRLSign", 7300};
constexpr CertProfile INTERMEDIATE_PROFILE = {"Kavo Host Device CA", "critical,CA:TRUE,pathlen:0",
                                              "critical,keyCertSign,cRLSign", 3650};
constexpr CertProfile DEVICE_PROFILE = {"Kavo Host Device", "critical,CA:FALSE", "critical,digitalSignature", 365};

bool AddConfExtension(X509* cert, X509* issuer, int nid, const char* value)
{
    X509V3_CTX ctx;
    X509V3_set_ctx_nodb(&ctx);
    X509V3_set_ctx(&ctx, issuer, cert, nullptr, nullptr, 0);
    std::unique_ptr<X509_EXTENSION, ExtFree> ext(X509V3_EXT_nconf_nid(nullptr, &ctx, nid, value));
    return ext != nullptr && X509_add_ext(cert, ext.get(), -1) == 1;
}

// The challenge travels as the DER of an OCTET STRING inside the extension's value.
bool AddChallengeExtension(X509* cert, const uint8_t* challenge, size_t size)
{
    std::unique_ptr<ASN1_OBJECT, ObjFree> oid(OBJ_txt2obj(DCM_CHALLENGE_EXTENSION_OID, 1));
    std::unique_ptr<ASN1_OCTET_STRING, OctetFree> inner(ASN1_OCTET_STRING_new());
    std::unique_ptr<ASN1_OCTET_STRING, OctetFree> value(ASN1_OCTET_STRING_new());
    if (oid == nullptr || inner == nullptr || value == nullptr ||
        ASN1_OCTET_STRING_set(inner.get(), challenge, static_cast<int>(size)) != 1) {
        return false;
    }
    unsigned char* der = nullptr;
    int derLength = i2d_ASN1_OCTET_STRING(inner.get(), &der);
    bool ok = derLength > 0 && ASN1_OCTET_STRING_set(value.get(), der, derLength) == 1;
    OPENSSL_free(der);
    std::unique_ptr<X509_EXTENSION, ExtFree> ext(ok ? X509_EXTENSION_create_by_OBJ(nullptr, oid.get(), 0, value.get())
                                                    : nullptr);
    return ext != nullptr && X509_add_ext(cert, ext.get(), -1) == 1;
}

bool SetIdentity(X509* cert, const CertProfile& profile, EVP_PKEY* key, X509* issuer)
{
    BIGNUM* serial = BN_new();
    bool ok = serial != nullptr && BN_rand(serial, SERIAL_BITS, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) == 1 &&
              BN_to_ASN1_INTEGER(serial, X509_get_serialNumber(cert)) != nullptr;
    BN_free(serial);
    X509_NAME* name = X509_get_subject_name(cert);
    const auto* org = reinterpret_cast<const unsigned char*>("Kavo Host");
    const auto* cn = reinterpret_cast<const unsigned char*>(profile.commonName);
    return ok && X509_set_version(cert, X509_VERSION_3) == 1 &&
           X509_gmtime_adj(X509_getm_notBefore(cert), -BACKDATE_SECONDS) != nullptr &&
           X509_gmtime_adj(X509_getm_notAfter(cert), profile.validDays * SECONDS_PER_DAY) != nullptr &&
           X509_NAME_add_entry_by_txt(name, "O", MBSTRING_ASC, org, -1, -1, 0) == 1 &&
           X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, cn, -1, -1, 0) == 1 &&
           X509_set_issuer_name(cert, X509_get_subject_name(issuer)) == 1 && X509_set_pubkey(cert, key) == 1;
}

// `issuer` null makes a self-signed certificate; `challenge` null adds no challenge.
X509Ptr MakeCert(const CertProfile& profile, EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey, const uint8_t* challenge,
                 size_t challengeSize, bool withChallenge)
{
    X509Ptr cert(X509_new());
    if (cert == nullptr) {
        return nullptr;
    }
    X509* signer = issuer != nullptr ? issuer : cert.get();
    bool ok = SetIdentity(cert.get(), profile, key, signer) &&
              AddConfExtension(cert.get(), signer, NID_basic_constraints, profile.basicConstraints) &&
              AddConfExtension(cert.get(), signer, NID_key_usage, profile.keyUsage) &&
              AddConfExtension(cert.get(), signer, NID_subject_key_identifier, "hash") &&
              AddConfExtension(cert.get(), signer, NID_authority_key_identifier, "keyid:always") &&
              (!withChallenge || AddChallengeExtension(cert.get(), challenge, challengeSize)) &&
              X509_sign(cert.get(), issuerKey != nullptr ? issuerKey : key, EVP_sha256()) > 0;
    return ok ? std::move(cert) : nullptr;
}

DerBytes ToDer(X509* cert)
{
    int length = i2d_X509(cert, nullptr);
    if (length <= 0) {
        return {};
    }
    DerBytes der(static_cast<size_t>(length));
    unsigned char* cursor = der.data();
    return i2d_X509(cert, &cursor) == length ? der : DerBytes();
}

// The keys and the two authority certificates live as long as the process.
struct Authority {
    PkeyPtr rootKey{EVP_EC_gen("P-256")};
    PkeyPtr intermediateKey{EVP_EC_gen("P-256")};
    PkeyPtr deviceKey{EVP_EC_gen("P-256")};
    X509Ptr root;
    X509Ptr intermediate;
    DerBytes rootDer;
    DerBytes intermediateDer;

    Authority()
    {
        if (rootKey == nullptr || intermediateKey == nullptr || deviceKey == nullptr) {
            return;
        }
        root = MakeCert(ROOT_PROFILE, rootKey.get(), nullptr, nullptr, nullptr, 0, false);
        if (root != nullptr) {
            intermediate =
                MakeCert(INTERMEDIATE_PROFILE, intermediateKey.get(), root.get(), rootKey.get(), nullptr, 0, false);
        }
        if (intermediate != nullptr) {
            rootDer = ToDer(root.get());
            intermediateDer = ToDer(intermediate.get());
        }
    }

    bool Ready() const { return !rootDer.empty() && !intermediateDer.empty(); }
};

const Authority& GetAuthority()
{
    static const Authority authority;
    return authority;
}

}  // namespace

std::vector<DerBytes> IssueDeviceChain(const uint8_t* challenge, size_t challengeSize)
{
    const Authority& authority = GetAuthority();
    if (!authority.Ready()) {
        return {};
    }
    X509Ptr device = MakeCert(DEVICE_PROFILE, authority.deviceKey.get(), authority.intermediate.get(),
                              authority.intermediateKey.get(), challenge, challengeSize, true);
    DerBytes deviceDer = device != nullptr ? ToDer(device.get()) : DerBytes();
    if (deviceDer.empty()) {
        return {};
    }
    return {deviceDer, authority.intermediateDer, authority.rootDer};
}

}  // namespace Kavo::internal
