// SecureString: a byte string for keys, key material, digests and their encodings. Its
// destructor zeroes the current contents (the first size() bytes) before the storage goes
// back, with a fill the optimiser cannot remove. Not thread-safe; own it on one thread.
//
// A SecureString never moves its bytes out: moving one copies it, so the source still wipes
// its own buffer when it dies.
#ifndef KAVO_PUSH_CODEC_SECURE_STRING_H
#define KAVO_PUSH_CODEC_SECURE_STRING_H

#include <cstddef>
#include <string>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT SecureString : public std::string {
public:
    using std::string::string;

    SecureString() = default;
    // Copies exactly `length` bytes, embedded zero bytes included.
    SecureString(const char* data, size_t length) : std::string(data, length) {}
    SecureString(const std::string& other) : std::string(other) {}  // NOLINT: implicit on purpose
    SecureString(const SecureString& other) = default;
    SecureString& operator=(const SecureString& other) = default;
    ~SecureString();
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_SECURE_STRING_H
