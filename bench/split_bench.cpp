// StringSplit of 100 comma-separated fields against a plain std::string::find loop in the same
// run, with a literal separator and with a regular-expression one.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "kavo/push/common/base_util.h"

namespace {

using Kavo::Push::BaseUtil;

const std::string& Fields()
{
    static const std::string text = [] {
        std::string fields;
        for (int i = 0; i < 100; ++i) {
            fields += (i == 0 ? "" : ",") + std::string("field") + std::to_string(i);
        }
        return fields;
    }();
    return text;
}

void BM_Split_Library(benchmark::State& state, const char* pattern)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(BaseUtil::StringSplit(Fields(), pattern));
    }
}

void BM_Split_FindLoop(benchmark::State& state)
{
    const std::string& text = Fields();
    for (auto _ : state) {
        std::vector<std::string> tokens;
        size_t start = 0;
        for (size_t at = text.find(','); at != std::string::npos; at = text.find(',', start)) {
            tokens.emplace_back(text, start, at - start);
            start = at + 1;
        }
        if (start < text.size()) {
            tokens.emplace_back(text, start);
        }
        benchmark::DoNotOptimize(tokens);
    }
}

}  // namespace

BENCHMARK_CAPTURE(BM_Split_Library, literal, ",");
BENCHMARK_CAPTURE(BM_Split_Library, regex, "[,]");
BENCHMARK(BM_Split_FindLoop);

BENCHMARK_MAIN();
