#include "kavo/host/dcm/dcm_api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "tests/host/dcm/dcm_test_util.h"

namespace {

constexpr uint32_t SLOT_BYTES = 8192;

// Slots owned by the test; the chain record points into them.
struct Slots {
    std::vector<std::vector<uint8_t>> buffers;
    std::vector<DcmBlob> blobs;
    DcmCertChain chain{};

    explicit Slots(std::vector<uint32_t> sizes)
    {
        for (uint32_t size : sizes) {
            buffers.emplace_back(size, 0);
        }
        for (auto& buffer : buffers) {
            blobs.push_back({static_cast<uint32_t>(buffer.size()), buffer.data()});
        }
        chain = {blobs.data(), static_cast<uint32_t>(blobs.size())};
    }

    KavoTest::X509Ptr Cert(size_t i) const { return KavoTest::ParseDer(blobs[i].data, blobs[i].size); }
    bool Untouched() const
    {
        for (size_t i = 0; i < buffers.size(); ++i) {
            if (blobs[i].size != buffers[i].size() || std::any_of(buffers[i].begin(), buffers[i].end(),
                                                                  [](uint8_t b) { return b != 0; })) {
                return false;
            }
        }
        return true;
    }
};

int32_t Attest(Slots& slots, const std::string& challenge, int32_t type = DCM_ATTEST_TYPE_IDS)
{
    uint8_t udid[] = {'u', 'd', 'i', 'd'};
    DcmBlob ids = {sizeof(udid), udid};
    std::vector<uint8_t> bytes(challenge.begin(), challenge.end());
    DcmBlob blob = {static_cast<uint32_t>(bytes.size()), bytes.empty() ? nullptr : bytes.data()};
    return DcmAttestSecInfo(type, &ids, &blob, &slots.chain);
}

class DcmAttestTest : public testing::Test {
protected:
    void TearDown() override { DcmHostResetControl(); }
};

TEST_F(DcmAttestTest, IssuedChainVerifiesLeafToRootAndCarriesTheChallenge)
{
    struct Case {
        const char* behaviour;
        std::string challenge;
    };
    const Case cases[] = {
        {"a printable challenge is carried byte for byte", "nonce-2026-11-22"},
        {"zero bytes inside the challenge survive", std::string("a\0b\0", 4)},
        {"an empty challenge gives an empty extension", ""},
        {"a long challenge still fits the device slot", std::string(1024, 'x')},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Slots slots({SLOT_BYTES, SLOT_BYTES, SLOT_BYTES, SLOT_BYTES});
        ASSERT_EQ(Attest(slots, c.challenge), DCM_SUCCESS);
        ASSERT_EQ(slots.chain.certsCount, 3u);
        auto leaf = slots.Cert(0);
        auto intermediate = slots.Cert(1);
        auto root = slots.Cert(2);
        ASSERT_TRUE(leaf && intermediate && root);
        EXPECT_EQ(KavoTest::VerifyChain(leaf.get(), intermediate.get(), root.get()), X509_V_OK);
        EXPECT_EQ(KavoTest::ChallengeOf(leaf.get()), c.challenge);
        EXPECT_FALSE(KavoTest::ChallengeOf(intermediate.get()).has_value());
        EXPECT_EQ(slots.blobs[3].size, SLOT_BYTES) << "the slot past the chain is left as prepared";
    }
}

TEST_F(DcmAttestTest, KeysAndAuthoritiesAreMadeOncePerProcess)
{
    Slots first({SLOT_BYTES, SLOT_BYTES, SLOT_BYTES});
    Slots second({SLOT_BYTES, SLOT_BYTES, SLOT_BYTES});
    ASSERT_EQ(Attest(first, "one"), DCM_SUCCESS);
    ASSERT_EQ(Attest(second, "two"), DCM_SUCCESS);
    for (size_t slot : {1, 2}) {
        EXPECT_EQ(first.buffers[slot], second.buffers[slot]) << "slot " << slot;
    }
    auto firstLeaf = first.Cert(0);
    auto secondLeaf = second.Cert(0);
    EXPECT_EQ(X509_cmp(firstLeaf.get(), secondLeaf.get()) == 0, false) << "each device certificate is new";
    EXPECT_EQ(EVP_PKEY_eq(X509_get0_pubkey(firstLeaf.get()), X509_get0_pubkey(secondLeaf.get())), 1);
}

TEST_F(DcmAttestTest, RefusalsLeaveTheSlotsAsTheyWere)
{
    struct Case {
        const char* behaviour;
        std::vector<uint32_t> sizes;
        int32_t type;
        int32_t status;
    };
    const Case cases[] = {
        {"an intermediate larger than its slot is refused", {SLOT_BYTES, 64, SLOT_BYTES}, 1, DCM_ERR_SLOT_TOO_SMALL},
        {"a device certificate larger than its slot is refused", {64}, 1, DCM_ERR_SLOT_TOO_SMALL},
        {"an unknown attestation type is refused", {SLOT_BYTES, SLOT_BYTES, SLOT_BYTES}, 2, DCM_ERR_INVALID_ARGUMENT},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Slots slots(c.sizes);
        EXPECT_EQ(Attest(slots, "challenge", c.type), c.status);
        EXPECT_EQ(slots.chain.certsCount, c.sizes.size());
        EXPECT_TRUE(slots.Untouched());
    }
}

TEST_F(DcmAttestTest, MalformedArgumentsAreRefused)
{
    uint8_t byte = 0;
    DcmBlob good = {1, &byte};
    DcmBlob sizeWithoutData = {4, nullptr};
    DcmBlob slot = {SLOT_BYTES, nullptr};
    DcmCertChain noSlots = {nullptr, 3};
    DcmCertChain nullSlotData = {&slot, 1};
    Slots slots({SLOT_BYTES});
    struct Case {
        const char* behaviour;
        const DcmBlob* ids;
        const DcmBlob* challenge;
        DcmCertChain* chain;
    };
    const Case cases[] = {
        {"a null chain", &good, &good, nullptr},
        {"a chain without slots", &good, &good, &noSlots},
        {"a slot without data", &good, &good, &nullSlotData},
        {"null identifiers", nullptr, &good, &slots.chain},
        {"a challenge with a size but no data", &good, &sizeWithoutData, &slots.chain},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        EXPECT_EQ(DcmAttestSecInfo(DCM_ATTEST_TYPE_IDS, c.ids, c.challenge, c.chain), DCM_ERR_INVALID_ARGUMENT);
    }
}

TEST_F(DcmAttestTest, ControlSurfaceShapesTheAnswer)
{
    struct Case {
        const char* behaviour;
        int32_t status;
        int32_t count;
        int32_t emptySlot;
        uint32_t slotCount;
        int32_t expectStatus;
        uint32_t expectCount;
        int32_t expectEmptySlot;
    };
    const Case cases[] = {
        {"a chosen status is returned before anything is written", -5, -1, -1, 4, -5, 4, -1},
        {"a chosen count of 0 is reported", 0, 0, -1, 4, 0, 0, -1},
        {"a chosen count of 4 is reported over four slots", 0, 4, -1, 4, 0, 4, -1},
        {"a chosen count never passes the slots given", 0, 9, -1, 3, 0, 3, -1},
        {"fewer slots than certificates limit the count", 0, -1, -1, 2, 0, 2, -1},
        {"a chosen slot is left empty", 0, -1, 1, 4, 0, 3, 1},
        {"an empty slot past the slots given is ignored", 0, -1, 7, 4, 0, 3, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        DcmHostResetControl();
        DcmHostSetStatus(c.status);
        DcmHostSetCertCount(c.count);
        DcmHostSetEmptySlot(c.emptySlot);
        Slots slots(std::vector<uint32_t>(c.slotCount, SLOT_BYTES));
        EXPECT_EQ(Attest(slots, "challenge"), c.expectStatus);
        EXPECT_EQ(slots.chain.certsCount, c.expectCount);
        for (uint32_t i = 0; i < c.slotCount; ++i) {
            bool filled = c.expectStatus == 0 && i < 3 && static_cast<int32_t>(i) != c.expectEmptySlot;
            EXPECT_EQ(slots.blobs[i].size != SLOT_BYTES && slots.blobs[i].size != 0, filled) << "slot " << i;
        }
        if (c.expectEmptySlot >= 0) {
            EXPECT_EQ(slots.blobs[c.expectEmptySlot].size, 0u);
        }
    }
}

}  // namespace
