// Base64 and SHA-256 of 4 KiB through the library against the same work done with raw
// OpenSSL calls in the same run: EVP_EncodeBlock / EVP_DecodeBlock and EVP_Digest.
#include <openssl/evp.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/codec/push_encrypt_helper.h"

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::PushEncryptHelper;
using Kavo::Push::SecureString;

constexpr size_t PAYLOAD_BYTES = 4096;

const SecureString& Payload()
{
    static const SecureString payload = [] {
        SecureString bytes;
        for (size_t i = 0; i < PAYLOAD_BYTES; ++i) {
            bytes.push_back(static_cast<char>(i * 131 + 7));
        }
        return bytes;
    }();
    return payload;
}

const unsigned char* Bytes(const std::string& s)
{
    return reinterpret_cast<const unsigned char*>(s.data());
}

void BM_Base64Encode_Library(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(PushBase64Convert::Base64Encode(Payload()));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PAYLOAD_BYTES));
}

void BM_Base64Encode_OpenSSL(benchmark::State& state)
{
    std::vector<unsigned char> out(PAYLOAD_BYTES / 3 * 4 + 8);
    for (auto _ : state) {
        int length = EVP_EncodeBlock(out.data(), Bytes(Payload()), static_cast<int>(PAYLOAD_BYTES));
        // The library hands out an owning string; the baseline builds one too.
        benchmark::DoNotOptimize(std::string(reinterpret_cast<char*>(out.data()), static_cast<size_t>(length)));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PAYLOAD_BYTES));
}

void BM_Base64Decode_Library(benchmark::State& state)
{
    const SecureString text = PushBase64Convert::Base64Encode(Payload());
    for (auto _ : state) {
        benchmark::DoNotOptimize(PushBase64Convert::Base64Decode(text));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PAYLOAD_BYTES));
}

void BM_Base64Decode_OpenSSL(benchmark::State& state)
{
    const SecureString text = PushBase64Convert::Base64Encode(Payload());
    std::vector<unsigned char> out(text.size());
    for (auto _ : state) {
        int length = EVP_DecodeBlock(out.data(), Bytes(text), static_cast<int>(text.size()));
        benchmark::DoNotOptimize(std::string(reinterpret_cast<char*>(out.data()), static_cast<size_t>(length)));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PAYLOAD_BYTES));
}

void BM_Sha256Hex_Library(benchmark::State& state)
{
    std::string hex;
    for (auto _ : state) {
        benchmark::DoNotOptimize(PushEncryptHelper::EncryptWithSha256(Payload(), hex));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PAYLOAD_BYTES));
}

// The baseline digests with EVP_Digest and formats hex with a table, the cheapest honest way.
void BM_Sha256Hex_OpenSSL(benchmark::State& state)
{
    static const char digits[] = "0123456789abcdef";
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int digestLength = 0;
    for (auto _ : state) {
        EVP_Digest(Payload().data(), PAYLOAD_BYTES, digest, &digestLength, EVP_sha256(), nullptr);
        std::string hex(digestLength * 2, '0');
        for (unsigned int i = 0; i < digestLength; ++i) {
            hex[2 * i] = digits[digest[i] >> 4];
            hex[2 * i + 1] = digits[digest[i] & 0x0F];
        }
        benchmark::DoNotOptimize(hex);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PAYLOAD_BYTES));
}

}  // namespace

BENCHMARK(BM_Base64Encode_Library);
BENCHMARK(BM_Base64Encode_OpenSSL);
BENCHMARK(BM_Base64Decode_Library);
BENCHMARK(BM_Base64Decode_OpenSSL);
BENCHMARK(BM_Sha256Hex_Library);
BENCHMARK(BM_Sha256Hex_OpenSSL);

BENCHMARK_MAIN();
