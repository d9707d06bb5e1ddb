#include "kavo/host/dcm/dcm_api.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <vector>

#include "kavo/host/dcm/internal/cert_issuer.h"

namespace {

constexpr int32_t NOT_SET = -1;

std::atomic<int32_t> g_forcedStatus{DCM_SUCCESS};
std::atomic<int32_t> g_forcedCount{NOT_SET};
std::atomic<int32_t> g_emptySlot{NOT_SET};
std::atomic<int32_t> g_oversizedSlot{NOT_SET};

bool BlobValid(const DcmBlob* blob)
{
    return blob != nullptr && (blob->size == 0 || blob->data != nullptr);
}

// Every slot is checked before any is written, so a refusal leaves the chain as it was.
int32_t CheckSlots(const DcmCertChain* chain, const std::vector<Kavo::internal::DerBytes>& ders, uint32_t filled)
{
    for (uint32_t i = 0; i < filled; ++i) {
        if (chain->certs[i].data == nullptr) {
            return DCM_ERR_INVALID_ARGUMENT;
        }
        if (ders[i].size() > chain->certs[i].size) {
            return DCM_ERR_SLOT_TOO_SMALL;
        }
    }
    return DCM_SUCCESS;
}

void ApplyControl(DcmCertChain* chain, uint32_t slots, const std::vector<uint32_t>& prepared)
{
    int32_t count = g_forcedCount.load();
    if (count >= 0) {
        chain->certsCount = std::min(static_cast<uint32_t>(count), slots);
    }
    int32_t empty = g_emptySlot.load();
    if (empty >= 0 && static_cast<uint32_t>(empty) < slots) {
        chain->certs[empty].size = 0;
    }
    int32_t oversized = g_oversizedSlot.load();
    if (oversized >= 0 && static_cast<uint32_t>(oversized) < slots) {
        chain->certs[oversized].size = prepared[oversized] + 1;
    }
}

}  // namespace

extern "C" int32_t DcmAttestSecInfo(int32_t type, const DcmBlob* ids, const DcmBlob* challenge, DcmCertChain* chain)
{
    int32_t forced = g_forcedStatus.load();
    if (forced != DCM_SUCCESS) {
        return forced;
    }
    if (type != DCM_ATTEST_TYPE_IDS || !BlobValid(ids) || !BlobValid(challenge) || chain == nullptr ||
        chain->certs == nullptr) {
        return DCM_ERR_INVALID_ARGUMENT;
    }
    std::vector<Kavo::internal::DerBytes> ders = Kavo::internal::IssueDeviceChain(challenge->data, challenge->size);
    if (ders.empty()) {
        return DCM_ERR_ISSUE_FAILED;
    }
    const uint32_t slots = chain->certsCount;
    std::vector<uint32_t> prepared;
    for (uint32_t i = 0; i < slots; ++i) {
        prepared.push_back(chain->certs[i].size);
    }
    const uint32_t filled = std::min(static_cast<uint32_t>(ders.size()), slots);
    int32_t status = CheckSlots(chain, ders, filled);
    if (status != DCM_SUCCESS) {
        return status;
    }
    for (uint32_t i = 0; i < filled; ++i) {
        std::memcpy(chain->certs[i].data, ders[i].data(), ders[i].size());
        chain->certs[i].size = static_cast<uint32_t>(ders[i].size());
    }
    chain->certsCount = filled;
    ApplyControl(chain, slots, prepared);
    return DCM_SUCCESS;
}

extern "C" void DcmHostSetStatus(int32_t status)
{
    g_forcedStatus.store(status);
}

extern "C" void DcmHostSetCertCount(int32_t count)
{
    g_forcedCount.store(count < 0 ? NOT_SET : count);
}

extern "C" void DcmHostSetEmptySlot(int32_t slot)
{
    g_emptySlot.store(slot < 0 ? NOT_SET : slot);
}

extern "C" void DcmHostSetOversizedSlot(int32_t slot)
{
    g_oversizedSlot.store(slot < 0 ? NOT_SET : slot);
}

extern "C" void DcmHostResetControl(void)
{
    g_forcedStatus.store(DCM_SUCCESS);
    g_forcedCount.store(NOT_SET);
    g_emptySlot.store(NOT_SET);
    g_oversizedSlot.store(NOT_SET);
}
