// Base64, digests, keys and the device certificate chain.
#include <string>
#include <vector>

#include <kavo/push/codec/dcm_service.h>
#include <kavo/push/codec/push_base64_convert.h>
#include <kavo/push/codec/push_curve25519_helper.h>
#include <kavo/push/codec/push_encrypt_helper.h>

#include "show.h"

using namespace Kavo::Push;

int main()
{
    // guide: base64
    SecureString text = PushBase64Convert::Base64Encode(SecureString("push token"));
    SecureString bytes = PushBase64Convert::Base64Decode(text);
    SecureString refused = PushBase64Convert::Base64Decode(SecureString("not base64!"));  // empty: logged, reported
    Guide::Show("encoded", std::string(text), "cHVzaCB0b2tlbg==");
    Guide::Show("decoded", std::string(bytes), "push token");
    Guide::Show("refused", refused.empty(), true);
    // end guide

    // guide: digest
    std::string hex, base64;
    PushEncryptHelper::EncryptWithSha256("abc", hex);
    PushEncryptHelper::EncryptWithSha256Base64("abc", base64);
    Guide::Show("SHA-256 hex", hex, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    Guide::Show("SHA-256 Base64", base64, "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
    // end guide

    // guide: keys
    SecureString material, publicKeyDer;
    PushBaseRsp rsp = PushCurve25519Helper::GenerateEd25519Key(material, publicKeyDer);
    Guide::Show("key pair made", rsp.Succeed(), true);
    Guide::Show("key material bytes", material.size(), PushCurve25519Helper::KEY_MATERIAL_BYTES);
    Guide::Show("public key DER bytes", publicKeyDer.size(), size_t{44});
    // end guide

    // guide: chain
    std::string challenge = "nonce-2024";
    std::vector<std::string> pems;
    rsp = DcmService::GetCertChain(challenge, pems);  // appends leaf, intermediate, root
    Guide::Show("chain", rsp.Succeed() ? std::to_string(pems.size()) + " certificates" : rsp.GetInfo(),
                "3 certificates");
    Guide::Show("leaf starts", pems.empty() ? "" : pems[0].substr(0, 28), "-----BEGIN CERTIFICATE-----\n");
    // end guide
    return Guide::ExitStatus();
}
