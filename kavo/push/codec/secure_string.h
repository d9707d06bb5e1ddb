// SecureString: a byte string for keys, key material, digests and their encodings. Before its
// storage goes back (when it dies or is assigned) it zeroes the whole buffer, spare capacity
// included, with a fill the optimiser cannot remove. Not thread-safe; own it on one thread.
//
// Moving a SecureString into another hands its buffer over without a copy, and the source is
// left empty with nothing of the secret in it: a short string lives inside the object, so those
// bytes are wiped there. Moving one into a plain std::string hands the buffer over to a string
// that never wipes it: copy into plain strings instead (only what stayed behind is wiped then).
// Growing one (append, reserve) may leave an old buffer unwiped; size it up front.
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
    SecureString(SecureString&& other) noexcept;
    // Each wipes the old contents before taking the new ones.
    SecureString& operator=(const SecureString& other);
    SecureString& operator=(SecureString&& other) noexcept;
    ~SecureString();

private:
    void Wipe() noexcept;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_SECURE_STRING_H
