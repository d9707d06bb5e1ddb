#include "kavo/push/codec/dcm_service.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "kavo/push/codec/push_base64_convert.h"
#include "tests/host/dcm/dcm_test_util.h"
#include "tests/support/test_support.h"

namespace {

using Kavo::Push::DcmService;
using Kavo::Push::PushBaseRsp;

const std::string BEGIN = "-----BEGIN CERTIFICATE-----\n";
const std::string END = "\n-----END CERTIFICATE-----";

std::string Body(const std::string& pem)
{
    return pem.substr(BEGIN.size(), pem.size() - BEGIN.size() - END.size());
}

class DcmServiceTest : public testing::Test {
protected:
    void TearDown() override { DcmHostResetControl(); }

    KavoTest::ScopedEnv showPrivate_{"KAVO_LOG_PRIVATE", "show"};
    Kavo::LogCapture log_;
    KavoTest::ReportRecorder reports_;
};

TEST_F(DcmServiceTest, PemChainParsesAndVerifiesToTheRoot)
{
    for (std::string challenge : {std::string("c0ffee"), std::string("\0\x01\x02", 3), std::string()}) {
        SCOPED_TRACE(challenge.size());
        std::vector<std::string> pems = {"kept"};
        ASSERT_TRUE(DcmService::GetCertChain(challenge, pems).Succeed());
        ASSERT_EQ(pems.size(), 4u);
        EXPECT_EQ(pems[0], "kept") << "the chain is appended, never cleared";
        for (size_t i = 1; i < pems.size(); ++i) {
            EXPECT_EQ(pems[i].rfind(BEGIN, 0), 0u);
            EXPECT_EQ(pems[i].substr(pems[i].size() - END.size()), END) << "no newline after the end marker";
            EXPECT_EQ(Body(pems[i]).find('\n'), std::string::npos) << "the body is one line";
            EXPECT_GT(Body(pems[i]).size(), 64u);
        }
        auto leaf = KavoTest::ParsePem(pems[1]);
        auto intermediate = KavoTest::ParsePem(pems[2]);
        auto root = KavoTest::ParsePem(pems[3]);
        ASSERT_TRUE(leaf && intermediate && root);
        EXPECT_EQ(KavoTest::VerifyChain(leaf.get(), intermediate.get(), root.get()), X509_V_OK);
        EXPECT_EQ(KavoTest::ChallengeOf(leaf.get()), challenge);
    }
    EXPECT_TRUE(log_.Lines().empty());
}

// Each case ends with the chain freed; the sanitizer build checks that nothing leaks.
TEST_F(DcmServiceTest, ManagerAnswersShapeTheResult)
{
    const std::string zeroSlot = Kavo::Push::PushBase64Convert::Base64Encode(std::string(8192, '\0'));
    struct Case {
        const char* behaviour;
        int32_t status;
        int32_t count;
        int32_t emptySlot;
        const char* desc;               // null: success
        std::vector<std::string> logs;  // in order
        size_t appended;
    };
    const Case cases[] = {
        {"a failing status carries its code", -5, -1, -1, "Failed to get certChain:ret -5",
         {"GetCertChain: Failed to Get CertChain:ret -5"}, 0},
        {"a count of 0 succeeds and appends nothing", 0, 0, -1, nullptr, {}, 0},
        {"a count of 4 adds the prepared, zeroed fourth slot", 0, 4, -1, nullptr, {}, 4},
        {"an empty slot gives an empty body and a refused encoding", 0, -1, 1, nullptr,
         {"Base64Encode error: invalid input param"}, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        DcmHostResetControl();
        DcmHostSetStatus(c.status);
        DcmHostSetCertCount(c.count);
        DcmHostSetEmptySlot(c.emptySlot);
        log_.Clear();
        reports_.Clear();
        std::string challenge = "challenge";
        std::vector<std::string> pems = {"kept"};
        PushBaseRsp rsp = DcmService::GetCertChain(challenge, pems);
        EXPECT_EQ(rsp.Succeed(), c.desc == nullptr);
        if (c.desc != nullptr) {
            EXPECT_EQ(rsp.GetErr(), Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
            EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        }
        EXPECT_EQ(log_.Texts(), c.logs);
        EXPECT_EQ(pems.size(), 1 + c.appended);
        if (c.count == 4) {
            EXPECT_EQ(pems[4], BEGIN + zeroSlot + END);
        }
        if (c.emptySlot >= 0) {
            EXPECT_EQ(pems[1 + c.emptySlot], BEGIN + END);
            EXPECT_EQ(reports_.Reports().size(), 1u);
        }
    }
}

TEST_F(DcmServiceTest, PreparedChainHasFourZeroedSlotsAndAllAreFreed)
{
    DcmCertChain* chain = nullptr;
    ASSERT_EQ(DcmService::InitCertChain(&chain), 0);
    ASSERT_EQ(chain->certsCount, 4u);
    for (uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(chain->certs[i].size, 8192u);
        EXPECT_TRUE(std::all_of(chain->certs[i].data, chain->certs[i].data + 8192, [](uint8_t b) { return b == 0; }));
    }
    uint8_t nonce[] = {'n', 'o', 'n', 'c', 'e'};
    EXPECT_EQ(DcmService::AttestDeviceIds({sizeof(nonce), nonce}, chain), 0);
    EXPECT_EQ(chain->certsCount, 3u) << "the fourth slot stays allocated and must still be freed";
    DcmService::FreeCertChain(chain);
    DcmService::FreeCertChain(nullptr);
    EXPECT_EQ(DcmService::InitCertChain(nullptr), -10001);
    EXPECT_EQ(log_.Texts(), std::vector<std::string>{"InitCertChain: CertChain is Null"});
}

}  // namespace
