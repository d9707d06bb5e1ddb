#include "kavo/push/codec/dcm_service.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <regex>
#include <string>
#include <vector>

#include "kavo/push/codec/push_base64_convert.h"
#include "tests/host/dcm/dcm_test_util.h"
#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using Texts = std::vector<std::string>;

// Every case frees its chain; the sanitizer build checks that nothing leaks.
TEST(DcmServiceTest, ChainIsAppendedAsPemAndShapedByTheManager)
{
    const std::string BEGIN = "-----BEGIN CERTIFICATE-----\n";
    const std::string END = "\n-----END CERTIFICATE-----";
    const std::regex pem(BEGIN + "[A-Za-z0-9+/]{65,}={0,2}" + END);  // the body on one line
    struct Case {
        const char* behaviour;
        std::string challenge;
        int32_t status, count, emptySlot, oversizedSlot;  // the manager's control settings
        std::string desc;                                 // empty: success
        const char* log;                                  // the one line logged, or empty
        size_t appended;
    };
    const Case cases[] = {
        {"a challenge with zero bytes", std::string("\0\x01\x02", 3), 0, -1, -1, -1, "", "", 3},
        {"an empty challenge", "", 0, -1, -1, -1, "", "", 3},
        {"a failing status carries its code", "c", -5, -1, -1, -1, "Failed to get certChain:ret -5",
         "GetCertChain: Failed to Get CertChain:ret -5", 0},
        {"a count of 0 appends nothing", "c", 0, 0, -1, -1, "", "", 0},
        {"a count of 4 adds the prepared, zeroed fourth slot", "c", 0, 4, -1, -1, "", "", 4},
        {"an empty slot gives an empty body", "c", 0, -1, 1, -1, "", "Base64Encode error: invalid input param", 3},
        {"a certificate larger than its slot fails, appending nothing", "c", 0, -1, -1, 1,
         "Cert larger than its slot:size 8193", "GetCertChain: Cert Larger Than Its Slot:size 8193", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        DcmHostSetStatus(c.status);
        DcmHostSetCertCount(c.count);
        DcmHostSetEmptySlot(c.emptySlot);
        DcmHostSetOversizedSlot(c.oversizedSlot);
        Kavo::LogCapture log;
        std::string challenge = c.challenge;
        std::vector<std::string> pems = {"kept"};
        PushBaseRsp rsp = DcmService::GetCertChain(challenge, pems);
        DcmHostResetControl();
        EXPECT_EQ(rsp.GetErr(), c.desc.empty() ? PUSH_SUCCESS : PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(log.Texts(), *c.log ? Texts{c.log} : Texts{});
        ASSERT_EQ(pems.size(), 1 + c.appended);
        EXPECT_EQ(pems[0], "kept") << "the chain is appended, never cleared";
        for (size_t i = 1; i < pems.size(); ++i) {
            EXPECT_TRUE(i == 1u + c.emptySlot ? pems[i] == BEGIN + END : std::regex_match(pems[i], pem)) << i;
        }
        EXPECT_TRUE(c.count != 4 || pems[4] == BEGIN + PushBase64Convert::Base64Encode(std::string(8192, '\0')) + END);
        if (c.appended >= 3 && c.emptySlot < 0) {
            auto leaf = KavoTest::ParsePem(pems[1]), mid = KavoTest::ParsePem(pems[2]);
            auto root = KavoTest::ParsePem(pems[3]);
            ASSERT_TRUE(leaf && mid && root);
            EXPECT_EQ(KavoTest::VerifyChain(leaf.get(), mid.get(), root.get()), X509_V_OK);
            EXPECT_EQ(KavoTest::ChallengeOf(leaf.get()), c.challenge);
        }
    }
    Kavo::LogCapture log;
    EXPECT_EQ(DcmService::InitCertChain(nullptr), -10001);
    EXPECT_EQ(log.Texts(), Texts{"InitCertChain: CertChain is Null"});
}

// While armed, allocation number g_failAt (counted from 1) throws, as a full heap would.
size_t g_allocations = 0;
size_t g_failAt = 0;

}  // namespace

void* operator new(size_t size)
{
    void* memory = g_failAt != 0 && ++g_allocations == g_failAt ? nullptr : std::malloc(size == 0 ? 1 : size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
// Out of line, so the compiler does not pair a visible free with a new it has inlined.
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

namespace {

// Fails each allocation of the call in turn; the sanitizer build's leak check sees any chain a
// throw left behind.
TEST(DcmServiceTest, AFailedAllocationAnywhereLeavesNoChainBehind)
{
    std::string challenge = "c";
    for (bool threw = true; threw; g_allocations = 0) {
        std::vector<std::string> pems;
        ++g_failAt;
        try {
            threw = !DcmService::GetCertChain(challenge, pems).Succeed();
        } catch (const std::bad_alloc&) {
        }
    }
    EXPECT_GT(g_failAt, 3u) << "the call allocates, so some attempts failed";
    g_failAt = 0;
}

}  // namespace
