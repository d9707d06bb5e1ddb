// Base64 and SHA-256 through the library against the same work done with raw OpenSSL calls
// in the same run (EVP_EncodeBlock, EVP_DecodeBlock, one-shot SHA256 with table hex), at 64 B
// and 1 MiB.
#include <openssl/evp.h>
#include <openssl/sha.h>

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/codec/push_encrypt_helper.h"

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::PushEncryptHelper;
using Kavo::Push::SecureString;

const SecureString& Payload(size_t size)
{
    static std::map<size_t, SecureString> payloads;
    SecureString& bytes = payloads[size];
    while (bytes.size() < size) {
        bytes.push_back(static_cast<char>(bytes.size() * 131 + 7));
    }
    return bytes;
}

const unsigned char* Bytes(const std::string& s)
{
    return reinterpret_cast<const unsigned char*>(s.data());
}

void BM_Base64Encode_Library(benchmark::State& state)
{
    const SecureString& payload = Payload(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(PushBase64Convert::Base64Encode(payload));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * payload.size()));
}

void BM_Base64Encode_OpenSSL(benchmark::State& state)
{
    const SecureString& payload = Payload(static_cast<size_t>(state.range(0)));
    std::vector<unsigned char> out(payload.size() / 3 * 4 + 8);
    for (auto _ : state) {
        int length = EVP_EncodeBlock(out.data(), Bytes(payload), static_cast<int>(payload.size()));
        // The library hands out an owning string; the baseline builds one too.
        benchmark::DoNotOptimize(std::string(reinterpret_cast<char*>(out.data()), static_cast<size_t>(length)));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * payload.size()));
}

void BM_Base64Decode_Library(benchmark::State& state)
{
    const SecureString& payload = Payload(static_cast<size_t>(state.range(0)));
    const SecureString text = PushBase64Convert::Base64Encode(payload);
    for (auto _ : state) {
        benchmark::DoNotOptimize(PushBase64Convert::Base64Decode(text));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * payload.size()));
}

void BM_Base64Decode_OpenSSL(benchmark::State& state)
{
    const SecureString& payload = Payload(static_cast<size_t>(state.range(0)));
    const SecureString text = PushBase64Convert::Base64Encode(payload);
    const size_t padding = text.size() - text.find_last_not_of('=') - 1;
    // As a new user would: a string of the text's length decoded into, then cut to the bytes.
    for (auto _ : state) {
        std::string out(text.size(), '\0');
        int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(out.data()), Bytes(text),
                                     static_cast<int>(text.size()));
        out.resize(static_cast<size_t>(length) - padding);
        benchmark::DoNotOptimize(out);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * payload.size()));
}

void BM_Sha256Hex_Library(benchmark::State& state)
{
    const SecureString& payload = Payload(static_cast<size_t>(state.range(0)));
    std::string hex;
    for (auto _ : state) {
        benchmark::DoNotOptimize(PushEncryptHelper::EncryptWithSha256(payload, hex));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * payload.size()));
}

// The baseline digests in one call and formats hex with a table, the cheapest honest way.
void BM_Sha256Hex_OpenSSL(benchmark::State& state)
{
    const SecureString& payload = Payload(static_cast<size_t>(state.range(0)));
    static const char digits[] = "0123456789abcdef";
    unsigned char digest[SHA256_DIGEST_LENGTH];
    for (auto _ : state) {
        SHA256(Bytes(payload), payload.size(), digest);
        std::string hex(SHA256_DIGEST_LENGTH * 2, '0');
        for (size_t i = 0; i < SHA256_DIGEST_LENGTH; ++i) {
            hex[2 * i] = digits[digest[i] >> 4];
            hex[2 * i + 1] = digits[digest[i] & 0x0F];
        }
        benchmark::DoNotOptimize(hex);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * payload.size()));
}

constexpr int64_t SMALL = 64;
constexpr int64_t LARGE = 1 << 20;

}  // namespace

BENCHMARK(BM_Base64Encode_Library)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(BM_Base64Encode_OpenSSL)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(BM_Base64Decode_Library)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(BM_Base64Decode_OpenSSL)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(BM_Sha256Hex_Library)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(BM_Sha256Hex_OpenSSL)->Arg(SMALL)->Arg(LARGE);

BENCHMARK_MAIN();
