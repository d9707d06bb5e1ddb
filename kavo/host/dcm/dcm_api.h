// The device certificate manager: attests identifiers of this device against a caller's
// challenge and hands back an X.509 certificate chain, DER in the caller's slots, leaf first
// (slot 0 the device certificate carrying the challenge, slot 1 the intermediate, slot 2 the
// root). The control surface shapes the next attestations, for tests and the demo.
// All functions are thread-safe; the keys are made once per process.
#ifndef KAVO_HOST_DCM_DCM_API_H
#define KAVO_HOST_DCM_DCM_API_H

#include <stdint.h>

#include "kavo/host/host_export.h"

#ifdef __cplusplus
extern "C" {
#endif

struct DcmBlob {
    uint32_t size;
    uint8_t* data;
};

struct DcmCertChain {
    struct DcmBlob* certs;
    uint32_t certsCount;
};

enum DcmStatus {
    DCM_SUCCESS = 0,
    DCM_ERR_INVALID_ARGUMENT = -1,  // null chain or slots, unknown type, a blob with size but no data
    DCM_ERR_SLOT_TOO_SMALL = -2,    // a certificate does not fit its slot; the slots are not touched
    DCM_ERR_ISSUE_FAILED = -3,      // the certificates could not be made
};

// The type that attests device identifiers.
#define DCM_ATTEST_TYPE_IDS 1
// Object identifier of the device certificate's extension: an OCTET STRING of the challenge.
#define DCM_CHALLENGE_EXTENSION_OID "2.25.93312236723135416716578264851986982123"

// Fills min(3, chain->certsCount) slots, sets each filled slot's size and sets the count to
// the number filled. Slots past the filled ones are left as the caller prepared them.
KAVO_HOST_EXPORT int32_t DcmAttestSecInfo(int32_t type, const struct DcmBlob* ids, const struct DcmBlob* challenge,
                                          struct DcmCertChain* chain);

// Control surface. Each setting holds until changed or reset.
// A non-zero status is returned as is, before anything is checked or written.
KAVO_HOST_EXPORT void DcmHostSetStatus(int32_t status);
// After a successful issue the count is reported as this (capped to the slots given);
// a negative value restores the real count.
KAVO_HOST_EXPORT void DcmHostSetCertCount(int32_t count);
// After a successful issue this slot's size is set to 0; a negative value turns it off.
KAVO_HOST_EXPORT void DcmHostSetEmptySlot(int32_t slot);
// After a successful issue this slot's size is reported one byte larger than the buffer it
// was given, as a faulty manager would; a negative value turns it off.
KAVO_HOST_EXPORT void DcmHostSetOversizedSlot(int32_t slot);
KAVO_HOST_EXPORT void DcmHostResetControl(void);

#ifdef __cplusplus
}
#endif

#endif  // KAVO_HOST_DCM_DCM_API_H
