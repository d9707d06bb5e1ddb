#include "kavo/push/codec/secure_string.h"

#include "kavo/host/secure/bounded_memory.h"

namespace Kavo::Push {

// Only the current length is wiped; an empty string wipes nothing (memset_s refuses a zero
// size without touching memory).
SecureString::~SecureString()
{
    (void)Kavo::memset_s(data(), size(), 0, size());
}

}  // namespace Kavo::Push
