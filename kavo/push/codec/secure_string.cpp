#include "kavo/push/codec/secure_string.h"

#include <algorithm>
#include <utility>

#include "kavo/host/secure/bounded_memory.h"

namespace Kavo::Push {

SecureString& SecureString::operator=(const SecureString& other)
{
    if (this != &other) {
        Wipe();
        std::string::operator=(other);
    }
    return *this;
}

// A long string's buffer changes hands; a short one's bytes are copied out of the source's own
// object, so they are wiped there.
SecureString::SecureString(SecureString&& other) noexcept : std::string(std::move(other))
{
    other.Wipe();
}

// The source may also be handed this string's old buffer, wiped before the move.
SecureString& SecureString::operator=(SecureString&& other) noexcept
{
    if (this != &other) {
        Wipe();
        std::string::operator=(std::move(other));
        other.Wipe();
    }
    return *this;
}

SecureString::~SecureString()
{
    Wipe();
}

// The whole buffer, not just size() bytes: a shorter assignment or a move into a plain string
// leaves secret bytes past the end. memset_s refuses more than MAX_CHECKED_LENGTH bytes at
// once, so a larger buffer is wiped a chunk at a time.
void SecureString::Wipe() noexcept
{
    char* cursor = data();
    for (size_t left = capacity(); left > 0;) {
        const size_t chunk = std::min(left, Kavo::MAX_CHECKED_LENGTH);
        (void)Kavo::memset_s(cursor, chunk, 0, chunk);
        cursor += chunk;
        left -= chunk;
    }
}

}  // namespace Kavo::Push
