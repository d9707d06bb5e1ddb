// PushBase64Convert: standard Base64 (RFC 4648 alphabet, '=' padding) on a single line with
// no line breaks. Every answer is the one an OpenSSL Base64 filter in front of a memory buffer
// gives; well-formed input takes OpenSSL's block calls, the rest goes through the filter. A failure
// returns an empty string after an error log line and an analytics report; the empty result
// is the only sign the caller gets. Stateless; callable from any thread.
//
//   SecureString text = PushBase64Convert::Base64Encode(key);
//   if (text.empty()) { /* already logged and reported */ }
#ifndef KAVO_PUSH_CODEC_PUSH_BASE64_CONVERT_H
#define KAVO_PUSH_CODEC_PUSH_BASE64_CONVERT_H

#include "kavo/push/codec/secure_string.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushBase64Convert {
public:
    static SecureString Base64Encode(const SecureString& data);
    // A null `data` or a `length` of 0 is refused.
    static SecureString Base64Encode(const unsigned char* data, unsigned int length);
    // Text with a line break or any character outside the alphabet decodes as OpenSSL's
    // single-line decoder decides, which usually means an empty result.
    static SecureString Base64Decode(const SecureString& text);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_PUSH_BASE64_CONVERT_H
