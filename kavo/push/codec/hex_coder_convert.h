// HexCoderConvert: whole-buffer hex encoding (upper case, no separators) and decoding.
// Decoding never fails: an odd-length text is read as if a '0' led it, and characters that
// are no hex digits give fixed wrong bytes. Stateless; callable from any thread.
#ifndef KAVO_PUSH_CODEC_HEX_CODER_CONVERT_H
#define KAVO_PUSH_CODEC_HEX_CODER_CONVERT_H

#include "kavo/push/codec/secure_string.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT HexCoderConvert {
public:
    static SecureString ByteStream2Hex(const SecureString& data);
    static SecureString HexStream2Byte(const SecureString& text);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_HEX_CODER_CONVERT_H
