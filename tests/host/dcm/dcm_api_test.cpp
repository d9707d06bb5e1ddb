#include "kavo/host/dcm/dcm_api.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/host/dcm/dcm_test_util.h"

namespace {

// Attests into zeroed slots of these sizes: "status count slots", a slot C (one cert), E (emptied), Z (as prepared).
std::string Attest(const std::vector<uint32_t>& sizes, int32_t type)
{
    std::vector<std::vector<uint8_t>> bytes;
    std::vector<DcmBlob> slots;
    for (uint32_t size : sizes) {
        slots.push_back({size, bytes.emplace_back(size, 0).data()});
    }
    uint8_t udid[] = {'u', 'd', 'i', 'd'};
    DcmBlob ids = {sizeof(udid), udid};  // also the challenge
    DcmCertChain chain = {slots.data(), static_cast<uint32_t>(slots.size())};
    std::string result = std::to_string(DcmAttestSecInfo(type, &ids, &ids, &chain));
    result += " " + std::to_string(chain.certsCount) + " ";
    for (size_t i = 0; i < slots.size(); ++i) {
        char prepared = slots[i].size == sizes[i] && bytes[i] == std::vector<uint8_t>(sizes[i], 0) ? 'Z' : '?';
        result += KavoTest::ParseDer(slots[i].data, slots[i].size) ? 'C' : slots[i].size == 0 ? 'E' : prepared;
    }
    return result;
}

TEST(DcmAttestTest, AnswersFollowTheSlotsAndTheControls)
{
    struct Case {
        const char* behaviour;
        std::vector<uint32_t> sizes;
        int32_t type, count;  // what is asked, then the chosen count
        const char* result;   // status, count, slots
    };
    const Case cases[] = {
        {"three certificates in four slots", {8192, 8192, 8192, 8192}, 1, -1, "0 3 CCCZ"},
        {"fewer slots than certificates", {8192, 8192}, 1, -1, "0 2 CC"},
        {"a slot too small: nothing written", {8192, 64, 8192}, 1, -1, "-2 3 ZZZ"},
        {"an unknown attestation type", {8192, 8192, 8192}, 2, -1, "-1 3 ZZZ"},
        {"a chosen count stays within the slots", {8192, 8192, 8192}, 1, 9, "0 3 CCC"},
    };
    for (const Case& c : cases) {
        DcmHostSetCertCount(c.count);
        EXPECT_EQ(Attest(c.sizes, c.type), c.result) << c.behaviour;
        DcmHostResetControl();
    }
}

}  // namespace
