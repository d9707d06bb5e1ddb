#include "kavo/push/codec/dcm_service.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "kavo/host/secure/bounded_memory.h"
#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

constexpr int32_t DCM_OK = 0;

// Zeroed malloc memory, since the platform library writes into it and frees nothing.
void* ZeroedAlloc(size_t size)
{
    void* memory = std::malloc(size);
    if (memory != nullptr) {
        (void)Kavo::memset_s(memory, size, 0, size);
    }
    return memory;
}

// Frees the chain on every way out, an exception from building the texts included.
struct ChainFree {
    void operator()(DcmCertChain* chain) const { DcmService::FreeCertChain(chain); }
};
using ChainPtr = std::unique_ptr<DcmCertChain, ChainFree>;

std::string ToPem(const DcmBlob& cert)
{
    SecureString body = PushBase64Convert::Base64Encode(cert.data, cert.size);
    return "-----BEGIN CERTIFICATE-----\n" + body + "\n-----END CERTIFICATE-----";
}

}  // namespace

int32_t DcmService::InitCertChain(DcmCertChain** chain)
{
    if (chain == nullptr) {
        PUSH_LOGE("InitCertChain: CertChain is Null");
        return ERR_CHAIN_NULL;
    }
    *chain = static_cast<DcmCertChain*>(ZeroedAlloc(sizeof(DcmCertChain)));
    if (*chain == nullptr) {
        PUSH_LOGE("Get certChain failed");
        return ERR_CHAIN_MALLOC;
    }
    (*chain)->certs = static_cast<DcmBlob*>(ZeroedAlloc(sizeof(DcmBlob) * CERT_SLOT_COUNT));
    if ((*chain)->certs == nullptr) {
        PUSH_LOGE("Get cert of certChain failed");
        std::free(*chain);
        *chain = nullptr;
        return ERR_CHAIN_MALLOC;
    }
    (*chain)->certsCount = CERT_SLOT_COUNT;
    for (uint32_t i = 0; i < CERT_SLOT_COUNT; ++i) {
        DcmBlob& slot = (*chain)->certs[i];
        slot.data = static_cast<uint8_t*>(ZeroedAlloc(CERT_SLOT_BYTES));
        if (slot.data == nullptr) {
            PUSH_LOGE("Get data of cert failed");
            FreeCertChain(*chain);
            *chain = nullptr;
            return ERR_CHAIN_MALLOC;
        }
        slot.size = CERT_SLOT_BYTES;
    }
    return DCM_OK;
}

void DcmService::FreeCertChain(DcmCertChain* chain)
{
    if (chain == nullptr) {
        return;
    }
    // The manager may lower the count; every prepared slot is freed regardless.
    if (chain->certs != nullptr) {
        for (uint32_t i = 0; i < CERT_SLOT_COUNT; ++i) {
            std::free(chain->certs[i].data);
            chain->certs[i].data = nullptr;
            chain->certs[i].size = 0;
        }
        std::free(chain->certs);
    }
    std::free(chain);
}

int32_t DcmService::AttestDeviceIds(DcmBlob challenge, DcmCertChain* chain)
{
    uint8_t udid[] = {'u', 'd', 'i', 'd'};
    DcmBlob ids = {sizeof(udid), udid};
    return DcmAttestSecInfo(DCM_ATTEST_TYPE_IDS, &ids, &challenge, chain);
}

PushBaseRsp DcmService::GetCertChain(std::string& challenge, std::vector<std::string>& certChain)
{
    std::vector<uint8_t> scratch(challenge.begin(), challenge.end());
    DcmBlob challengeBlob = {static_cast<uint32_t>(scratch.size()), scratch.empty() ? nullptr : scratch.data()};
    DcmCertChain* prepared = nullptr;
    const int32_t initRet = InitCertChain(&prepared);
    ChainPtr chain(prepared);
    if (initRet != DCM_OK) {
        PUSH_LOGE("GetCertChain: Failed to malloc certChain");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Failed to malloc certChain");
    }
    int32_t ret = AttestDeviceIds(challengeBlob, chain.get());
    if (ret != DCM_OK) {
        PUSH_LOGE("GetCertChain: Failed to Get CertChain:ret %{public}d", ret);
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Failed to get certChain:ret %d", ret);
    }
    // A faulty manager is kept within the buffers: a count past the slots is capped, and a
    // certificate larger than its slot is refused.
    const uint32_t count = std::min(chain->certsCount, CERT_SLOT_COUNT);
    std::vector<std::string> pems;
    for (uint32_t i = 0; i < count; ++i) {
        const DcmBlob& cert = chain->certs[i];
        if (cert.size > CERT_SLOT_BYTES) {
            PUSH_LOGE("GetCertChain: Cert Larger Than Its Slot:size %{public}u", cert.size);
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Cert larger than its slot:size %u", cert.size);
        }
        pems.push_back(ToPem(cert));
    }
    certChain.insert(certChain.end(), std::make_move_iterator(pems.begin()), std::make_move_iterator(pems.end()));
    return PushBaseRsp(PUSH_SUCCESS);
}

}  // namespace Kavo::Push
