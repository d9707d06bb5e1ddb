// DcmService: asks the device certificate manager to attest this device's identifiers
// against a challenge and returns the chain as PEM texts, leaf first. Each call prepares and
// frees its own chain; no shared state, callable from any thread.
//
//   std::vector<std::string> pems;
//   PushBaseRsp rsp = DcmService::GetCertChain(challenge, pems);  // appends to `pems`
#ifndef KAVO_PUSH_CODEC_DCM_SERVICE_H
#define KAVO_PUSH_CODEC_DCM_SERVICE_H

#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/dcm/dcm_api.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT DcmService {
public:
    static constexpr uint32_t CERT_SLOT_COUNT = 4;
    static constexpr uint32_t CERT_SLOT_BYTES = 8192;
    static constexpr int32_t ERR_CHAIN_NULL = -10001;
    static constexpr int32_t ERR_CHAIN_MALLOC = -20001;

    // Prepares 4 zeroed slots of 8192 bytes each, all from malloc. Returns 0, ERR_CHAIN_NULL
    // when `chain` is null, or ERR_CHAIN_MALLOC (with *chain set to null) when memory runs out.
    static int32_t InitCertChain(DcmCertChain** chain);
    // Frees a chain made by InitCertChain: all four slots, whatever the count now says.
    static void FreeCertChain(DcmCertChain* chain);
    // Attests the "udid" identifier; returns the manager's status unchanged.
    static int32_t AttestDeviceIds(DcmBlob challenge, DcmCertChain* chain);
    // Appends one PEM text per certificate, its Base64 body on a single line and no newline
    // after the end marker; `certChain` is never cleared. A certificate reported larger than
    // its slot fails the call, appending nothing.
    static PushBaseRsp GetCertChain(std::string& challenge, std::vector<std::string>& certChain);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_DCM_SERVICE_H
