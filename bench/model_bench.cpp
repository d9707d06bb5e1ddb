// Cost of writing and reading the records over a Parcel. Every record family is written and
// read back (Marshalling, then Unmarshalling) on a fresh parcel. The notification request with a
// 1 KiB data string and the notification result (title, text, 16x16 RGBA icon, badge, two
// parameters) are measured against the copy baseline: allocate, copy the record's parcel bytes
// into the new buffer and copy the payload out of it, the least any record path must do. The
// request is also measured against protobuf serialising and parsing a message of the same
// fields. Read each record against its baselines as a ratio. The growth rows (BM_Grow) read each
// family at three sizes beside a copy of its own parcel bytes.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/media/pixel_map.h"
#include "kavo/host/want/want_params.h"
#include "kavo/push/model/entity_setting.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"
#include "kavo/push/model/remote_location_request.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_info.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/model/remote_want_agent.h"
#include "kavo/push/model/report_voip_call_params.h"
#include "kavo/push/model/subscribe_notification_setting.h"
#include "kavo/push/model/voip_info.h"
#include "kavo/push/model/voip_request.h"
#include "kavo/push/model/voip_result.h"
#include "model_bench.pb.h"

namespace {

using namespace Kavo;
using namespace Kavo::Push;

constexpr size_t DATA_BYTES = 1024;
constexpr int32_t ICON_SIDE = 16;
constexpr char ICON_BYTE = 0x5A;

const std::string& Data()
{
    static const std::string data(DATA_BYTES, 'd');
    return data;
}

RemoteNotificationRequest Request()
{
    return RemoteNotificationRequest(30, 2048, 8192, RemoteNotificationInfo("message", Data(), 7));
}

std::shared_ptr<AAFwk::WantParams> Parameters()
{
    auto params = std::make_shared<AAFwk::WantParams>();
    params->SetParam("pid", int32_t{4242});
    params->SetParam("caller", "com.example.mail");
    return params;
}

RemoteNotificationContent Content()
{
    RemoteNotificationContent content;
    content.SetTitle(std::make_shared<std::string>("New mail"));
    content.SetText(std::make_shared<std::string>("You have a message from Alice about tomorrow's meeting."));
    auto icon = std::make_shared<Media::PixelMap>(ICON_SIDE, ICON_SIDE, Media::PixelFormat::RGBA_8888);
    std::vector<uint8_t> pixels(static_cast<size_t>(icon->GetByteCount()), ICON_BYTE);
    icon->SetPixels(std::move(pixels));
    content.SetOverlayIcon(icon);
    content.SetBadgeNumber(std::make_shared<long>(3));
    return content;
}

RemoteNotificationResult Result()
{
    return RemoteNotificationResult(Content(), Parameters());
}

// One write and one read of `record` on a fresh parcel per iteration.
template <typename T>
void WriteAndRead(benchmark::State& state, const T& record)
{
    for (auto _ : state) {
        Parcel parcel;
        bool written = record.Marshalling(parcel);
        auto read = T::Unmarshalling(parcel);
        benchmark::DoNotOptimize(written);
        benchmark::DoNotOptimize(read.GetRefPtr());
    }
}

// The least a record path must do: a new buffer holding the parcel bytes, and the payload (found
// in them) copied out of it.
void CopyBaseline(benchmark::State& state, const Parcel& parcel, const std::string& payload)
{
    const uint8_t* bytes = parcel.GetData();
    const size_t size = parcel.GetDataSize();
    const auto* text = reinterpret_cast<const char*>(bytes);
    const size_t offset = static_cast<size_t>(std::search(text, text + size, payload.begin(), payload.end()) - text);
    if (offset + payload.size() > size) {
        state.SkipWithError("payload not in the parcel");
        return;
    }
    for (auto _ : state) {
        std::unique_ptr<uint8_t[]> buffer(new uint8_t[size]);
        std::memcpy(buffer.get(), bytes, size);
        benchmark::DoNotOptimize(buffer.get());
        std::string copied(reinterpret_cast<const char*>(buffer.get()) + offset, payload.size());
        benchmark::DoNotOptimize(copied.data());
        benchmark::ClobberMemory();
    }
}

void BM_RequestRecord(benchmark::State& state)
{
    WriteAndRead(state, Request());
}

void BM_RequestCopyBaseline(benchmark::State& state)
{
    Parcel parcel;
    Request().Marshalling(parcel);
    CopyBaseline(state, parcel, Data());
}

void BM_RequestProtobuf(benchmark::State& state)
{
    kavo_bench::NotificationRequest message;
    message.set_survival_time(30);
    message.set_overlay_icon_size(2048);
    message.set_content_size(8192);
    message.mutable_info()->set_type("message");
    message.mutable_info()->set_data(Data());
    message.mutable_info()->set_id(7);
    for (auto _ : state) {
        std::string wire;
        bool written = message.SerializeToString(&wire);
        kavo_bench::NotificationRequest read;
        bool parsed = read.ParseFromString(wire);
        benchmark::DoNotOptimize(written);
        benchmark::DoNotOptimize(parsed);
        benchmark::DoNotOptimize(read.info().data().data());
    }
}

void BM_ResultRecord(benchmark::State& state)
{
    WriteAndRead(state, Result());
}

void BM_ResultCopyBaseline(benchmark::State& state)
{
    Parcel parcel;
    Result().Marshalling(parcel);
    CopyBaseline(state, parcel, std::string(size_t{ICON_SIDE} * ICON_SIDE * 4, ICON_BYTE));
}

// The floor that the result's shape sets for a write and a read: its parcel bytes written once
// into a fresh buffer and copied once into another, and the same record built from values
// already in memory. Every shared part, the image's pixels and each parameter are allocated and
// copied; nothing is parsed or checked.
void BM_ResultShapeFloor(benchmark::State& state)
{
    Parcel parcel;
    Result().Marshalling(parcel);
    const RemoteNotificationContent source = Content();
    const std::vector<uint8_t> pixels(static_cast<size_t>(source.GetOverlayIcon()->GetByteCount()), ICON_BYTE);
    const size_t size = parcel.GetDataSize();
    for (auto _ : state) {
        std::unique_ptr<uint8_t[]> written(new uint8_t[size]);
        std::memcpy(written.get(), parcel.GetData(), size);
        benchmark::DoNotOptimize(written.get());
        std::unique_ptr<uint8_t[]> buffer(new uint8_t[size]);
        std::memcpy(buffer.get(), written.get(), size);
        benchmark::DoNotOptimize(buffer.get());
        sptr<RemoteNotificationResult> result(new RemoteNotificationResult());
        RemoteNotificationContent content;
        content.SetTitle(std::make_shared<std::string>(*source.GetTitle()));
        content.SetText(std::make_shared<std::string>(*source.GetText()));
        auto icon = std::make_shared<Media::PixelMap>(ICON_SIDE, ICON_SIDE, Media::PixelFormat::RGBA_8888);
        icon->SetPixels(std::vector<uint8_t>(pixels));
        content.SetOverlayIcon(icon);
        content.SetBadgeNumber(std::make_shared<long>(*source.GetBadgeNumber()));
        result->SetContent(content);
        result->SetParameters(Parameters());
        benchmark::DoNotOptimize(result.GetRefPtr());
    }
}

BENCHMARK(BM_RequestRecord);
BENCHMARK(BM_RequestCopyBaseline);
BENCHMARK(BM_RequestProtobuf);
BENCHMARK(BM_ResultRecord);
BENCHMARK(BM_ResultCopyBaseline);
BENCHMARK(BM_ResultShapeFloor);

// Every other record family, write then read.
void BM_MsgTimePoints(benchmark::State& state)
{
    MsgTimePoints points;
    points.timePoint0_ = 1;
    points.timePoint5_ = -1;
    WriteAndRead(state, points);
}

void BM_RemoteNotificationContent(benchmark::State& state)
{
    WriteAndRead(state, Content());
}

void BM_RemoteWantAgent(benchmark::State& state)
{
    RemoteWantAgent agent;
    agent.SetAbilityName("MainAbility");
    agent.SetParameters("{\"page\":\"inbox\"}");
    WriteAndRead(state, agent);
}

void BM_RemoteNotificationInfo(benchmark::State& state)
{
    WriteAndRead(state, RemoteNotificationInfo("message", Data(), 7));
}

void BM_PushPayload(benchmark::State& state)
{
    WriteAndRead(state, PushPayload("message", Data()));
}

void BM_PushExtensionInfo(benchmark::State& state)
{
    WriteAndRead(state, PushExtensionInfo(60, true, PushPayload("message", Data())));
}

void BM_RemoteLocationRequest(benchmark::State& state)
{
    WriteAndRead(state, RemoteLocationRequest(60, false, PushPayload("location", "{}")));
}

void BM_VoIPInfo(benchmark::State& state)
{
    WriteAndRead(state, VoIPInfo("call", Data(), "call-0001"));
}

void BM_VoIPRequest(benchmark::State& state)
{
    WriteAndRead(state, VoIPRequest(30, VoIPInfo("call", Data(), "call-0001")));
}

void BM_VoIPResult(benchmark::State& state)
{
    WriteAndRead(state, VoIPResult(Parameters()));
}

void BM_ReportVoIPCallParams(benchmark::State& state)
{
    WriteAndRead(state, ReportVoIPCallParams("call-0001", 2));
}

void BM_EntitySetting(benchmark::State& state)
{
    EntitySetting setting;
    setting.SetEntityId("entity-1");
    setting.SetEntityName("Inbox");
    setting.SetEnable(std::make_shared<bool>(true));
    setting.SetEntityType(static_cast<EntityType>(1));
    setting.SetExtraInfo(Parameters());
    WriteAndRead(state, setting);
}

void BM_SubscribeNotificationSetting(benchmark::State& state)
{
    SubscribeNotificationSetting setting;
    setting.SetBundleName("com.example.mail");
    setting.SetEnabled(std::make_shared<bool>(true));
    WriteAndRead(state, setting);
}

void BM_SubscribeNotificationBasicSetting(benchmark::State& state)
{
    SubscribeNotificationBasicSetting setting;
    setting.SetEnabled(true);
    WriteAndRead(state, setting);
}

BENCHMARK(BM_MsgTimePoints);
BENCHMARK(BM_RemoteNotificationContent);
BENCHMARK(BM_RemoteWantAgent);
BENCHMARK(BM_RemoteNotificationInfo);
BENCHMARK(BM_PushPayload);
BENCHMARK(BM_PushExtensionInfo);
BENCHMARK(BM_RemoteLocationRequest);
BENCHMARK(BM_VoIPInfo);
BENCHMARK(BM_VoIPRequest);
BENCHMARK(BM_VoIPResult);
BENCHMARK(BM_ReportVoIPCallParams);
BENCHMARK(BM_EntitySetting);
BENCHMARK(BM_SubscribeNotificationSetting);
BENCHMARK(BM_SubscribeNotificationBasicSetting);

// Growth: each family with its strings, parameter maps and images at about 100 B, 10 KiB and
// 1 MiB of content (parameter maps by entries of 100 B), and parameters nested 1, 8 and 32 deep,
// each beside a copy of its own parcel bytes into a new buffer. A cost that grows as the copy
// does keeps its ratio to the copy from 10 KiB to 1 MiB.
constexpr size_t GROWTH_CAPACITY = size_t{8} << 20;
constexpr size_t ENTRY_BYTES = 100;

std::string Text(size_t size)
{
    return std::string(size, 't');
}

std::shared_ptr<AAFwk::WantParams> SizedParameters(size_t content)
{
    auto params = std::make_shared<AAFwk::WantParams>();
    for (size_t i = 0; i < std::max<size_t>(content / ENTRY_BYTES, 1); ++i) {
        params->SetParam("key" + std::to_string(1000000 + i), Text(ENTRY_BYTES));
    }
    return params;
}

// Each level holds one value and the next level down.
AAFwk::WantParams Nested(size_t depth)
{
    AAFwk::WantParams params;
    params.SetParam("value", int32_t{7});
    if (depth > 1) {
        params.SetParam("next", Nested(depth - 1));
    }
    return params;
}

std::shared_ptr<Media::PixelMap> SizedImage(size_t content)
{
    const auto side = static_cast<int32_t>(std::max(std::sqrt(static_cast<double>(content) / 4), 1.0));
    auto image = std::make_shared<Media::PixelMap>(side, side, Media::PixelFormat::RGBA_8888);
    image->SetPixels(std::vector<uint8_t>(static_cast<size_t>(image->GetByteCount()), ICON_BYTE));
    return image;
}

RemoteNotificationContent SizedContent(size_t content)
{
    RemoteNotificationContent record;
    record.SetTitle(std::make_shared<std::string>("New mail"));
    record.SetText(std::make_shared<std::string>(Text(content)));
    return record;
}

// Records whose reader hands out a raw pointer are owned here, the others by their sptr.
template <typename T>
auto ReadBack(Parcel& parcel)
{
    if constexpr (std::is_same_v<T, AAFwk::WantParams> || std::is_same_v<T, Media::PixelMap>) {
        return std::unique_ptr<T>(T::Unmarshalling(parcel));
    } else {
        return T::Unmarshalling(parcel);
    }
}

template <typename T>
void BM_Grow(benchmark::State& state, T (*make)(size_t))
{
    const T record = make(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        Parcel parcel;
        parcel.SetMaxCapacity(GROWTH_CAPACITY);
        bool written = record.Marshalling(parcel);
        auto read = ReadBack<T>(parcel);
        benchmark::DoNotOptimize(written);
        benchmark::DoNotOptimize(read);
    }
}

template <typename T>
void BM_GrowCopy(benchmark::State& state, T (*make)(size_t))
{
    Parcel parcel;
    parcel.SetMaxCapacity(GROWTH_CAPACITY);
    if (!make(static_cast<size_t>(state.range(0))).Marshalling(parcel)) {
        state.SkipWithError("record not written");
        return;
    }
    const size_t size = parcel.GetDataSize();
    for (auto _ : state) {
        std::unique_ptr<uint8_t[]> buffer(new uint8_t[size]);
        std::memcpy(buffer.get(), parcel.GetData(), size);
        benchmark::DoNotOptimize(buffer.get());
        benchmark::ClobberMemory();
    }
    state.counters["parcel_bytes"] = static_cast<double>(size);
}

RemoteNotificationRequest SizedRequest(size_t n)
{
    return RemoteNotificationRequest(30, 2048, 8192, RemoteNotificationInfo("message", Text(n), 7));
}
RemoteNotificationResult SizedResult(size_t n)
{
    return RemoteNotificationResult(SizedContent(n / 2), SizedParameters(n / 2));
}
RemoteWantAgent SizedAgent(size_t n)
{
    RemoteWantAgent agent;
    agent.SetAbilityName("MainAbility");
    agent.SetParameters(Text(n));
    return agent;
}
RemoteNotificationInfo SizedInfo(size_t n)
{
    return RemoteNotificationInfo("message", Text(n), 7);
}
PushPayload SizedPayload(size_t n)
{
    return PushPayload("message", Text(n));
}
PushExtensionInfo SizedExtension(size_t n)
{
    return PushExtensionInfo(60, true, SizedPayload(n));
}
RemoteLocationRequest SizedLocation(size_t n)
{
    return RemoteLocationRequest(60, false, PushPayload("location", Text(n)));
}
VoIPInfo SizedVoIPInfo(size_t n)
{
    return VoIPInfo("call", Text(n), "call-0001");
}
VoIPRequest SizedVoIPRequest(size_t n)
{
    return VoIPRequest(30, SizedVoIPInfo(n));
}
VoIPResult SizedVoIPResult(size_t n)
{
    return VoIPResult(SizedParameters(n));
}
ReportVoIPCallParams SizedCallParams(size_t n)
{
    return ReportVoIPCallParams(Text(n), 2);
}
EntitySetting SizedEntity(size_t n)
{
    EntitySetting setting;
    setting.SetEntityId(Text(n / 2));
    setting.SetEntityName("Inbox");
    setting.SetEnable(std::make_shared<bool>(true));
    setting.SetExtraInfo(SizedParameters(n / 2));
    return setting;
}
SubscribeNotificationSetting SizedSubscription(size_t n)
{
    SubscribeNotificationSetting setting;
    setting.SetBundleName(Text(n));
    setting.SetEnabled(std::make_shared<bool>(true));
    return setting;
}
AAFwk::WantParams SizedMap(size_t n)
{
    return *SizedParameters(n);
}
Media::PixelMap SizedPixelMap(size_t n)
{
    return *SizedImage(n);
}

#define KAVO_GROWTH(name, make)                                                                     \
    BENCHMARK_CAPTURE(BM_Grow, name, make)->Arg(100)->Arg(10240)->Arg(1048576);                     \
    BENCHMARK_CAPTURE(BM_GrowCopy, name, make)->Arg(100)->Arg(10240)->Arg(1048576)

KAVO_GROWTH(RemoteNotificationRequest, &SizedRequest);
KAVO_GROWTH(RemoteNotificationResult, &SizedResult);
KAVO_GROWTH(RemoteNotificationContent, &SizedContent);
KAVO_GROWTH(RemoteWantAgent, &SizedAgent);
KAVO_GROWTH(RemoteNotificationInfo, &SizedInfo);
KAVO_GROWTH(PushPayload, &SizedPayload);
KAVO_GROWTH(PushExtensionInfo, &SizedExtension);
KAVO_GROWTH(RemoteLocationRequest, &SizedLocation);
KAVO_GROWTH(VoIPInfo, &SizedVoIPInfo);
KAVO_GROWTH(VoIPRequest, &SizedVoIPRequest);
KAVO_GROWTH(VoIPResult, &SizedVoIPResult);
KAVO_GROWTH(ReportVoIPCallParams, &SizedCallParams);
KAVO_GROWTH(EntitySetting, &SizedEntity);
KAVO_GROWTH(SubscribeNotificationSetting, &SizedSubscription);
KAVO_GROWTH(WantParams, &SizedMap);
KAVO_GROWTH(PixelMap, &SizedPixelMap);
BENCHMARK_CAPTURE(BM_Grow, WantParamsNested, &Nested)->Arg(1)->Arg(8)->Arg(32);
BENCHMARK_CAPTURE(BM_GrowCopy, WantParamsNested, &Nested)->Arg(1)->Arg(8)->Arg(32);

}  // namespace

BENCHMARK_MAIN();
