// Decodes arbitrary text as Base64 and encodes arbitrary bytes, checking that decoding never
// yields more than three bytes per four characters and that every encoding decodes back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kavo/push/codec/push_base64_convert.h"

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::SecureString;

// Failures log at error level; keep the fuzzer's output readable unless asked otherwise.
[[maybe_unused]] const int QUIET_LOG = setenv("KAVO_LOG_LEVEL", "fatal", 0);

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    SecureString input(reinterpret_cast<const char*>(data), size);
    SecureString decoded = PushBase64Convert::Base64Decode(input);
    Check(decoded.size() <= size / 4 * 3);

    SecureString encoded = PushBase64Convert::Base64Encode(data, static_cast<unsigned int>(size));
    Check(encoded.size() == (size + 2) / 3 * 4);
    if (size > 0) {
        Check(PushBase64Convert::Base64Decode(encoded) == input);
    }
    return 0;
}
