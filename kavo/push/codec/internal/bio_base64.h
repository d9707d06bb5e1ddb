// The Base64 codec as a chain of an OpenSSL Base64 filter in front of a memory buffer, with
// the no-newline flag. It answers every input, malformed text included, and is the reference
// the fast paths of PushBase64Convert are held to. Stateless; callable from any thread.
#ifndef KAVO_PUSH_CODEC_INTERNAL_BIO_BASE64_H
#define KAVO_PUSH_CODEC_INTERNAL_BIO_BASE64_H

#include "kavo/push/codec/secure_string.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push::internal {

// Same contract as PushBase64Convert::Base64Encode and Base64Decode: a failure is an empty
// result after an error log line and an analytics report.
KAVO_PUSH_EXPORT SecureString BioBase64Encode(const unsigned char* data, unsigned int length);
KAVO_PUSH_EXPORT SecureString BioBase64Decode(const SecureString& text);

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_CODEC_INTERNAL_BIO_BASE64_H
