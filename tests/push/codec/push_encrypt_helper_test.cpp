#include "kavo/push/codec/push_encrypt_helper.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kavo/host/log/log.h"

namespace {

using namespace Kavo::Push;
using Texts = std::vector<std::string>;

// Digests of other data are held to the SHA-256 context calls by the differential fuzzer.
TEST(Sha256Test, EmptyDataIsRefusedAndTheOutputsKept)
{
    Kavo::LogCapture log;
    std::string hex = "kept", base64 = "kept";
    for (const PushBaseRsp& rsp :
         {PushEncryptHelper::EncryptWithSha256("", hex), PushEncryptHelper::EncryptWithSha256Base64("", base64)}) {
        EXPECT_EQ(rsp.GetErr(), PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), "Parame is illeage");
    }
    EXPECT_EQ(hex + base64, "keptkept");
    EXPECT_EQ(log.Texts(),
              (Texts{"EncryptWithSha256: Parame is Illeage", "EncryptWithSha256Base6: Parame is Illeage"}));
    for (const auto& line : log.Lines()) {
        EXPECT_EQ(line.level, Kavo::LEVEL_WARN);
    }
}

}  // namespace
