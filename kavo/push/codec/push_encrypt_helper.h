// PushEncryptHelper: SHA-256 digests as raw bytes, as 64 lower-case hex characters, or as
// 44 Base64 characters. Stateless; callable from any thread.
//
//   std::string hex;
//   if (PushEncryptHelper::EncryptWithSha256(token, hex).Succeed()) { use(hex); }
#ifndef KAVO_PUSH_CODEC_PUSH_ENCRYPT_HELPER_H
#define KAVO_PUSH_CODEC_PUSH_ENCRYPT_HELPER_H

#include <cstddef>
#include <string>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushEncryptHelper {
public:
    static constexpr size_t SHA256_DIGEST_BYTES = 32;

    // Writes the digest of all bytes of `data` to `digest`, which holds 32 bytes.
    static void Sha256(const std::string& data, unsigned char* digest);
    // Both refuse empty data, leaving `out` untouched.
    static PushBaseRsp EncryptWithSha256(const std::string& data, std::string& out);
    // A failed Base64 step is not detected: `out` becomes empty and the call still succeeds.
    static PushBaseRsp EncryptWithSha256Base64(const std::string& data, std::string& out);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_PUSH_ENCRYPT_HELPER_H
