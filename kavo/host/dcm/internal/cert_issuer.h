// Issues the device certificate chain of the host's certificate manager: a root, an
// intermediate and a device certificate on P-256 keys that are made once per process.
// Internal to the host library. Thread-safe.
#ifndef KAVO_HOST_DCM_INTERNAL_CERT_ISSUER_H
#define KAVO_HOST_DCM_INTERNAL_CERT_ISSUER_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Kavo::internal {

using DerBytes = std::vector<uint8_t>;

// DER of the device certificate (with the challenge in its extension), the intermediate and
// the root, in that order; empty when OpenSSL fails.
std::vector<DerBytes> IssueDeviceChain(const uint8_t* challenge, size_t challengeSize);

}  // namespace Kavo::internal

#endif  // KAVO_HOST_DCM_INTERNAL_CERT_ISSUER_H
