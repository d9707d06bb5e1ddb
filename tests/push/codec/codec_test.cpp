#include <openssl/evp.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <new>
#include <regex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kavo/push/codec/byte_decoder.h"
#include "kavo/push/codec/dcm_service.h"
#include "kavo/push/codec/hex_coder_convert.h"
#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/codec/push_curve25519_helper.h"
#include "kavo/push/codec/push_encrypt_helper.h"
#include "kavo/push/codec/symbol_convert.h"
#include "kavo/push/codec/type_convertor.h"
#include "tests/host/dcm/dcm_test_util.h"
#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using Reports = std::vector<std::pair<int, std::string>>;
using Texts = std::vector<std::string>;

// Values, bounds and the untouched `out` are held to a byte-by-byte reading by the byte decoder
// fuzzer; these rows pin the failure's text, log line and the two numbers it reports.
TEST(ByteDecoderTest, FailuresReportTheSizeAndTheOffset)
{
    struct Case {
        const char* behaviour;
        std::string data;
        size_t width, offset;  // width 4 or 8 reads an integer; any other is the length of a run
        const char* error;
    };
    const Case cases[] = {
        {"a fixed-width read a byte short", "123456789", 8, 2, "Cannot decode data(9) for out of range(2)"},
        {"an offset that wraps past the end", "abcd", 4, SIZE_MAX,
         "Cannot decode data(4) for out of range(18446744073709551615)"},
        {"a run past the end, the length before the offset", "abcde", 3, 4,
         "Cannot decode data(5) for out of range(4)"},
        {"a run whose length wraps past the end", "abcde", SIZE_MAX, 1, "Cannot decode data(5) for out of range(1)"},
    };
    KavoTest::ScopedEnv showPrivate("KAVO_LOG_PRIVATE", "show");
    for (const Case& c : cases) {
        Kavo::LogCapture log;
        int64_t wide = 0;
        uint32_t narrow = 0;
        std::string run;
        PushBaseRsp rsp = c.width == 8   ? ByteDecoder::DecodeAsInt64(wide, c.data, c.offset)
                          : c.width == 4 ? ByteDecoder::DecodeAsUint32(narrow, c.data, c.offset)
                                         : ByteDecoder::DecodeAsByte(run, c.data, c.width, c.offset);
        EXPECT_EQ(rsp.GetErr(), PUSH_ERR_SYSTEM_INTERNAL) << c.behaviour;
        EXPECT_EQ(rsp.GetErrDescription(), c.error) << c.behaviour;
        EXPECT_EQ(log.Texts(), Texts{c.error}) << c.behaviour;
        EXPECT_EQ(log.Lines().at(0).level, Kavo::LEVEL_ERROR) << c.behaviour;
    }
    const uint64_t net = SymbolConvert::Host2NetUint64(0x0102030405060708ULL);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&net), 8), "\x01\x02\x03\x04\x05\x06\x07\x08");
    EXPECT_EQ(SymbolConvert::Host2NetStreamUint64(0x0102030405060708ULL), "\x01\x02\x03\x04\x05\x06\x07\x08");
}

// Hex text in any case and the upper-case encoding are held to each other by the hex fuzzer;
// these rows pin Hex2Byte's fixed answers for characters that are not hex digits.
TEST(HexTest, NonHexDigitsGiveFixedValues)
{
    struct Case {
        const char* behaviour;
        std::string hex, bytes;
    };
    const Case cases[] = {
        {"a non-hex high digit keeps its low four bits", "G1", "\x01"},
        {"a non-hex low digit is added whole", "1G", "\x20"},
        {"'z' counts as 35 on both sides", "zz", "\x53"},
        {"a byte above 0x7f counts from 'A', as where char is unsigned", "\xe1\x30", "\xa0"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(HexCoderConvert::HexStream2Byte(c.hex), c.bytes) << c.behaviour;
    }
    EXPECT_EQ(TypeConvertor::Uint32Convert2Hex(0xAB), "ab");
}

TEST(TypeConvertorTest, TextIsReadAsFarAsItFits)
{
    using Values = std::tuple<int32_t, int64_t, uint8_t, bool>;  // by Int32, Int64, Uint8 and Bool
    const std::pair<const char*, Values> cases[] = {
        {"12abc", {12, 12, 12, true}},
        {"true", {0, 0, 0, false}},
        {"300", {300, 300, 44, true}},
        {"2147483648", {INT32_MAX, 2147483648LL, 255, true}},
    };
    for (const auto& [text, values] : cases) {
        Values got(TypeConvertor::StringConvert2Int32(text), TypeConvertor::StringConvert2Int64(text),
                   TypeConvertor::StringConvert2Uint8(text), TypeConvertor::StringConvert2Bool(text));
        EXPECT_EQ(got, values) << text;
    }
}

// A failure is an empty result, one error line and one report of the same text. What is
// decoded or encoded is held to the OpenSSL filter chain by the differential fuzzer.
TEST(Base64Test, FailuresAreLoggedAndReported)
{
    auto decode = [](std::string text) { return [text] { return PushBase64Convert::Base64Decode(text); }; };
    auto encode = [](const char* data, unsigned int size) {
        return [=] { return PushBase64Convert::Base64Encode(reinterpret_cast<const unsigned char*>(data), size); };
    };
    struct Case {
        const char* behaviour;
        std::function<SecureString()> convert;
        const char* error;
    };
    const Case cases[] = {
        {"encoding a null pointer", encode(nullptr, 3), "Base64Encode error: invalid input param"},
        {"decoding empty text", decode(""), "Base64Decode error: invalid input param"},
        {"a character outside the alphabet", decode("Y!Jj"), "Base64Decode error: bio read fail"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Kavo::LogCapture log;
        KavoTest::ReportRecorder reports;
        EXPECT_EQ(c.convert(), "");
        EXPECT_EQ(log.Texts(), Texts{c.error});
        EXPECT_EQ(log.Lines().at(0).level, Kavo::LEVEL_ERROR);
        EXPECT_EQ(reports.Reports(), (Reports{{100002014, c.error}}));
    }
}

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

using PkeyPtr = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

TEST(Curve25519Test, GeneratedKeyMaterialAgreesWithItsDer)
{
    SecureString material, der;
    ASSERT_TRUE(PushCurve25519Helper::GenerateEd25519Key(material, der).Succeed());
    ASSERT_EQ(material.size(), 84u);
    const auto* words = reinterpret_cast<const uint32_t*>(material.data());
    EXPECT_EQ(std::vector<uint32_t>(words, words + 5), (std::vector<uint32_t>{102, 256, 32, 32, 0}));
    ASSERT_EQ(der.size(), 44u);
    EXPECT_EQ(der.substr(0, 12), std::string("\x30\x2a\x30\x05\x06\x03\x2b\x65\x70\x03\x21\x00", 12));
    EXPECT_EQ(der.substr(12), material.substr(20, 32)) << "the DER ends with the raw public key";
    PkeyPtr priv(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr,
                                              reinterpret_cast<const unsigned char*>(material.data()) + 52, 32),
                 EVP_PKEY_free);
    unsigned char derived[32];
    size_t length = sizeof(derived);
    ASSERT_EQ(EVP_PKEY_get_raw_public_key(priv.get(), derived, &length), 1);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(derived), 32), material.substr(20, 32)) << "one key pair";
}

TEST(Curve25519Test, UnusableKeysAreRefused)
{
    const unsigned char raw[32] = {1, 2, 3};
    struct Case {
        PkeyPtr key;
        bool der;  // GetPublicKeyForDerFormat rather than BuildCurve25519KeyMaterial
        const char* desc;
        const char* logText;
    };
    const Case cases[] = {
        {PkeyPtr(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, raw, 32), EVP_PKEY_free), false,
         "add private key to material failed", "BuildCurve25519KeyMaterial: Add Private Key to Material Failed"},
        {PkeyPtr(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED448"), EVP_PKEY_free), false,
         "add public key to material failed", "BuildCurve25519KeyMaterial: Add Public Key to Material Failed"},
        {PkeyPtr(EVP_PKEY_new(), EVP_PKEY_free), true, "public der key length invalid",
         "GetPublicKeyForDerFormat: Public Der Key Length Invalid"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.desc);
        Kavo::LogCapture log;
        SecureString out("untouched");
        PushBaseRsp rsp = c.der ? PushCurve25519Helper::GetPublicKeyForDerFormat(c.key.get(), out)
                                : PushCurve25519Helper::BuildCurve25519KeyMaterial(102, c.key.get(), out);
        EXPECT_EQ(rsp.GetErr(), PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(out, "untouched");
        EXPECT_EQ(log.Texts(), Texts{c.logText});
    }
}

// Placed in storage the test owns, so the inline buffer can be read after the string is done.
TEST(SecureStringTest, SecretBytesAreWipedOnEveryWayOut)
{
    struct Case {
        const char* behaviour;
        std::function<void(SecureString&)> before;  // done to the string before it dies
        bool wipedAtOnce;                           // the bytes past its new end are zero already
    };
    const Case cases[] = {
        {"destroyed as it is", [](SecureString&) {}, true},
        {"moved into a plain string, leaving bytes behind", [](SecureString& s) { std::string other(std::move(s)); },
         false},
        {"assigned shorter contents, wiping the old tail at once", [](SecureString& s) { s = SecureString("x"); },
         true},
    };
    for (const std::string& bytes : {std::string("k3y!"), std::string("ab\0cd\0ef", 8), std::string(15, 's')}) {
        for (const Case& c : cases) {
            alignas(SecureString) char storage[sizeof(SecureString)] = {};
            auto* string = new (storage) SecureString(bytes.data(), bytes.size());
            const size_t at = std::string(storage, sizeof(storage)).find(bytes);
            ASSERT_NE(at, std::string::npos) << "the case must use the short-string buffer";
            c.before(*string);
            const std::string tail(storage + at + string->size(), bytes.size() - string->size());
            EXPECT_TRUE(!c.wipedAtOnce || tail == std::string(tail.size(), '\0')) << c.behaviour;
            string->~SecureString();
            EXPECT_EQ(std::string(storage + at, bytes.size()), std::string(bytes.size(), '\0')) << c.behaviour;
        }
    }
}

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
