// Str2Json and both Json2Str forms on a 4 KiB message payload, each beside jsoncpp called
// directly the same way (a reader per parse, a writer builder kept across writes).
#include <benchmark/benchmark.h>
#include <json/json.h>

#include <memory>
#include <string>

#include "kavo/push/json/json_utils.h"

namespace {

using Kavo::Push::JsonUtils;

// A notification payload of about 4 KiB: nested objects, arrays, numbers and UTF-8 text.
std::string Payload()
{
    Json::Value root;
    root["msgId"] = "7c0f6b2e-3f1a-4c55-9b1e-2a9d8e4f1c70";
    root["ttl"] = 86400;
    root["priority"] = "HIGH";
    for (int i = 0; i < 22; ++i) {
        Json::Value item;
        item["id"] = i;
        item["title"] = "Lieferung unterwegs — 配送中 " + std::to_string(i);
        item["body"] = "Your parcel is on its way and arrives tomorrow between 9 and 12.";
        item["weight"] = 1.25 * i;
        item["tags"].append("push");
        item["tags"].append("parcel");
        item["read"] = (i % 2) == 0;
        root["items"].append(item);
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, root);
}

const std::string& PayloadText()
{
    static const std::string text = Payload();
    return text;
}

void BM_Str2Json(benchmark::State& state)
{
    for (auto _ : state) {
        Json::Value root;
        benchmark::DoNotOptimize(JsonUtils::Str2Json(PayloadText(), root));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PayloadText().size()));
    state.SetLabel(std::to_string(PayloadText().size()) + " bytes");
}
BENCHMARK(BM_Str2Json);

void BM_JsoncppParse(benchmark::State& state)
{
    Json::CharReaderBuilder builder;
    const std::string& text = PayloadText();
    for (auto _ : state) {
        std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        Json::Value root;
        std::string errs;
        benchmark::DoNotOptimize(reader->parse(text.data(), text.data() + text.size(), &root, &errs));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_JsoncppParse);

Json::Value PayloadValue()
{
    Json::Value root;
    JsonUtils::Str2Json(PayloadText(), root);
    return root;
}

void BM_Json2StrCompact(benchmark::State& state)
{
    const Json::Value root = PayloadValue();
    for (auto _ : state) {
        benchmark::DoNotOptimize(JsonUtils::Json2Str(root));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PayloadText().size()));
}
BENCHMARK(BM_Json2StrCompact);

void BM_JsoncppWriteCompact(benchmark::State& state)
{
    const Json::Value root = PayloadValue();
    Json::StreamWriterBuilder builder;
    builder["emitUTF8"] = true;
    builder["indentation"] = "";
    for (auto _ : state) {
        benchmark::DoNotOptimize(Json::writeString(builder, root));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PayloadText().size()));
}
BENCHMARK(BM_JsoncppWriteCompact);

void BM_Json2StrIndented(benchmark::State& state)
{
    const Json::Value root = PayloadValue();
    std::string text;
    for (auto _ : state) {
        JsonUtils::Json2Str(root, text);
        benchmark::DoNotOptimize(text);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PayloadText().size()));
}
BENCHMARK(BM_Json2StrIndented);

void BM_JsoncppWriteIndented(benchmark::State& state)
{
    const Json::Value root = PayloadValue();
    Json::StreamWriterBuilder builder;
    builder["emitUTF8"] = true;
    std::string text;
    for (auto _ : state) {
        text = Json::writeString(builder, root);
        benchmark::DoNotOptimize(text);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * PayloadText().size()));
}
BENCHMARK(BM_JsoncppWriteIndented);

}  // namespace

BENCHMARK_MAIN();
