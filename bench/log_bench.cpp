// Cost of the library's formatting against the plain C library doing the same work:
// SerializeLogDetail (heap buffer, zeroing, checked format) against vsnprintf into a stack
// buffer, and a masked LogPrint that no capture records and the level filter hides against
// snprintf of the same line. Read each pair as a ratio.
#include <benchmark/benchmark.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "kavo/host/log/log.h"
#include "kavo/push/common/push_log_helper.h"

namespace {

constexpr const char* PLAIN_FORMAT = "GetBundleInfo fail: %s, uid %d, flags %u, size %zu";
constexpr const char* LOG_FORMAT = "GetBundleInfo fail: %{public}s, uid %d, flags %{public}u, size %zu";

std::string Serialize(const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    std::string text = Kavo::Push::PushLogHelper::SerializeLogDetail(fmt, args);
    va_end(args);
    return text;
}

int StackFormat(char* buffer, size_t size, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    int n = std::vsnprintf(buffer, size, fmt, args);
    va_end(args);
    return n;
}

void BM_SerializeLogDetail(benchmark::State& state)
{
    for (auto _ : state) {
        std::string text = Serialize(PLAIN_FORMAT, "com.example.app", 20010, 0x40u, size_t{4096});
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(BM_SerializeLogDetail);

void BM_VsnprintfStackBuffer(benchmark::State& state)
{
    for (auto _ : state) {
        char buffer[4097];
        int n = StackFormat(buffer, sizeof(buffer), PLAIN_FORMAT, "com.example.app", 20010, 0x40u, size_t{4096});
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(buffer);
    }
}
BENCHMARK(BM_VsnprintfStackBuffer);

void BM_LogPrintMaskedHidden(benchmark::State& state)
{
    unsetenv("KAVO_LOG_PRIVATE");
    setenv("KAVO_LOG_LEVEL", "warn", 1);  // the debug line is formatted but not written
    for (auto _ : state) {
        int n = Kavo::LogPrint(Kavo::LOG_SOURCE_SERVICE, Kavo::LEVEL_DEBUG, 0xD005300, "push", LOG_FORMAT,
                               "com.example.app", 20010, 0x40u, size_t{4096});
        benchmark::DoNotOptimize(n);
    }
}
BENCHMARK(BM_LogPrintMaskedHidden);

void BM_SnprintfSameLine(benchmark::State& state)
{
    for (auto _ : state) {
        char buffer[512];
        int n = std::snprintf(buffer, sizeof(buffer), PLAIN_FORMAT, "com.example.app", 20010, 0x40u, size_t{4096});
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(buffer);
    }
}
BENCHMARK(BM_SnprintfSameLine);

}  // namespace

BENCHMARK_MAIN();
