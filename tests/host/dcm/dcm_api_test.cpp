#include "kavo/host/dcm/dcm_api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
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
    Slots(const Slots&) = delete;  // the chain points into this object's own buffers
    Slots& operator=(const Slots&) = delete;

    KavoTest::X509Ptr Cert(size_t i) const { return KavoTest::ParseDer(blobs[i].data, blobs[i].size); }
    // As prepared: full size and all zero.
    bool Untouched(size_t i) const
    {
        return blobs[i].size == buffers[i].size() &&
               std::all_of(buffers[i].begin(), buffers[i].end(), [](uint8_t b) { return b == 0; });
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

// Every thread gets a chain that verifies, carries its own challenge and shares the one root.
TEST_F(DcmAttestTest, ConcurrentAttestationsShareOneAuthority)
{
    constexpr size_t THREADS = 4;
    std::vector<std::unique_ptr<Slots>> slots;
    for (size_t i = 0; i < THREADS; ++i) {
        slots.push_back(std::make_unique<Slots>(std::vector<uint32_t>{SLOT_BYTES, SLOT_BYTES, SLOT_BYTES}));
    }
    std::vector<int32_t> status(THREADS, -100);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < THREADS; ++i) {
        threads.emplace_back([&, i] { status[i] = Attest(*slots[i], "thread " + std::to_string(i)); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (size_t i = 0; i < THREADS; ++i) {
        SCOPED_TRACE(i);
        ASSERT_EQ(status[i], DCM_SUCCESS);
        EXPECT_EQ(slots[i]->buffers[2], slots[0]->buffers[2]) << "one root for the whole process";
        auto leaf = slots[i]->Cert(0);
        auto intermediate = slots[i]->Cert(1);
        auto root = slots[i]->Cert(2);
        ASSERT_TRUE(leaf && intermediate && root);
        EXPECT_EQ(KavoTest::VerifyChain(leaf.get(), intermediate.get(), root.get()), X509_V_OK);
        EXPECT_EQ(KavoTest::ChallengeOf(leaf.get()), "thread " + std::to_string(i));
    }
}

TEST_F(DcmAttestTest, AnswersFollowTheSlotsAndTheControls)
{
    const uint32_t full = SLOT_BYTES;
    struct Case {
        const char* behaviour;
        std::vector<uint32_t> slots;
        int32_t type, status, count, emptySlot;  // what is asked, then the control settings
        int32_t expectStatus;
        uint32_t expectCount;
    };
    const Case cases[] = {
        {"three certificates fill four slots, the fourth as prepared", {full, full, full, full}, 1, 0, -1, -1, 0, 3},
        {"fewer slots than certificates limit the chain", {full, full}, 1, 0, -1, -1, 0, 2},
        {"a certificate larger than its slot is refused, nothing written", {full, 64, full}, 1, 0, -1, -1,
         DCM_ERR_SLOT_TOO_SMALL, 3},
        {"an unknown attestation type is refused", {full, full, full}, 2, 0, -1, -1, DCM_ERR_INVALID_ARGUMENT, 3},
        {"a chosen status is returned before anything is written", {full, full, full, full}, 1, -5, -1, -1, -5, 4},
        {"a chosen count of 0 is reported", {full, full, full, full}, 1, 0, 0, -1, 0, 0},
        {"a chosen count of 4 is reported over four slots", {full, full, full, full}, 1, 0, 4, -1, 0, 4},
        {"a chosen count never passes the slots given", {full, full, full}, 1, 0, 9, -1, 0, 3},
        {"a chosen slot is left empty", {full, full, full, full}, 1, 0, -1, 1, 0, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        DcmHostResetControl();
        DcmHostSetStatus(c.status);
        DcmHostSetCertCount(c.count);
        DcmHostSetEmptySlot(c.emptySlot);
        Slots slots(c.slots);
        EXPECT_EQ(Attest(slots, "challenge", c.type), c.expectStatus);
        EXPECT_EQ(slots.chain.certsCount, c.expectCount);
        for (size_t i = 0; i < c.slots.size(); ++i) {
            if (static_cast<int32_t>(i) == c.emptySlot) {
                EXPECT_EQ(slots.blobs[i].size, 0u);
            } else if (c.expectStatus == DCM_SUCCESS && i < 3) {
                EXPECT_NE(slots.Cert(i), nullptr) << "slot " << i << " holds exactly one certificate";
            } else {
                EXPECT_TRUE(slots.Untouched(i)) << "slot " << i;
            }
        }
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
    EXPECT_EQ(DcmAttestSecInfo(1, nullptr, &good, &slots.chain), DCM_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(DcmAttestSecInfo(1, &good, &sizeWithoutData, &slots.chain), DCM_ERR_INVALID_ARGUMENT);
    for (DcmCertChain* chain : {static_cast<DcmCertChain*>(nullptr), &noSlots, &nullSlotData}) {
        EXPECT_EQ(DcmAttestSecInfo(1, &good, &good, chain), DCM_ERR_INVALID_ARGUMENT);
    }
    EXPECT_TRUE(slots.Untouched(0));
}

}  // namespace
