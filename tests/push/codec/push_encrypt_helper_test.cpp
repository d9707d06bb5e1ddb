#include "kavo/push/codec/push_encrypt_helper.h"

#include <gtest/gtest.h>

#include <string>

#include "kavo/push/codec/hex_coder_convert.h"
#include "tests/support/test_support.h"

namespace {

using Kavo::Push::HexCoderConvert;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushEncryptHelper;

TEST(PushEncryptHelperTest, KnownAnswersInEveryForm)
{
    struct Case {
        const char* behaviour;
        std::string data;
        std::string hex;
        std::string base64;
    };
    const Case cases[] = {
        {"FIPS 180-2: abc", "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
         "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0="},
        {"FIPS 180-2: the 448-bit message", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
         "JI1qYdIGOLjlwCaTDD5gOaM85Flk/yFn9uzt1BnbBsE="},
        {"FIPS 180-2: one million a", std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0",
         "zcduXJkU+5KBocfihNc+Z/GAmkiklyAOBG05zMcRLNA="},
        {"zero bytes are hashed, not ended at", std::string("a\0b", 3),
         "59b271ae1bbcb1d31d41929817f4b16fb439eb4f31520b5ad1d5ce98920a7138",
         "WbJxrhu8sdMdQZKYF/Sxb7Q5608xUgta0dXOmJIKcTg="},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        std::string hex;
        std::string base64;
        ASSERT_TRUE(PushEncryptHelper::EncryptWithSha256(c.data, hex).Succeed());
        ASSERT_TRUE(PushEncryptHelper::EncryptWithSha256Base64(c.data, base64).Succeed());
        unsigned char digest[PushEncryptHelper::SHA256_DIGEST_BYTES] = {};
        PushEncryptHelper::Sha256(c.data, digest);
        EXPECT_EQ(hex, c.hex);
        EXPECT_EQ(base64, c.base64);
        EXPECT_EQ(HexCoderConvert::HexStream2Byte(c.hex), std::string(digest, digest + sizeof(digest)));
    }
}

TEST(PushEncryptHelperTest, EmptyDataIsRefusedAndOutStays)
{
    struct Case {
        const char* behaviour;
        PushBaseRsp (*encrypt)(const std::string&, std::string&);
        const char* logText;
    };
    const Case cases[] = {
        {"hex digest", &PushEncryptHelper::EncryptWithSha256, "EncryptWithSha256: Parame is Illeage"},
        {"Base64 digest", &PushEncryptHelper::EncryptWithSha256Base64, "EncryptWithSha256Base6: Parame is Illeage"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Kavo::LogCapture log;
        std::string out = "kept";
        PushBaseRsp rsp = c.encrypt("", out);
        EXPECT_EQ(rsp.GetErr(), Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), "Parame is illeage");
        EXPECT_EQ(out, "kept");
        auto lines = log.Lines();
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].level, Kavo::LOG_WARN);
        EXPECT_EQ(lines[0].text, c.logText);
    }
}

}  // namespace
