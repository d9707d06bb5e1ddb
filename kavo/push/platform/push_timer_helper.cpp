#include "kavo/push/platform/push_timer_helper.h"

#include <chrono>
#include <functional>
#include <string>

#include "kavo/host/time/time_service_client.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/common/system_ability_status_service.h"
#include "kavo/push/event/report_log.h"
#include "kavo/push/event/teldric_helper.h"
#include "kavo/push/platform/system_clock_util.h"

namespace Kavo::Push {

using MiscServices::TimeServiceClient;

namespace {

constexpr int TIME_SERVICE_ABILITY_ID = 3702;
constexpr int64_t MS_PER_SECOND = 1000;
constexpr int64_t US_PER_MS = 1000;

// The texts of one operation on an existing timer, set one per line at its call site.
struct TimerOpTexts {
    const char* nullInfoLog = nullptr;  // logged and reported
    const char* nullInfoDesc = nullptr;
    const char* noClientLog = nullptr;
    const char* refusedLog = nullptr;
    const char* refusedApiName = nullptr;  // of the analytics event
    const char* refusedDesc = nullptr;
};

void AddTimerEvent(const std::string& apiName, const std::string& detail)
{
    TeldricHelper::AddEvent(COMPONENT_TIMER, apiName, API_STATUS_FAILURE, detail);
}

// Runs `op` on the timer with the time-service client; each failure gives its texts.
PushBaseRsp RunTimerOp(const std::shared_ptr<PushTimerInfo>& timerInfo, const TimerOpTexts& texts,
                       const std::function<bool(TimeServiceClient&, PushTimerInfo&)>& op)
{
    if (timerInfo == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_TIMER_FAILED, "%{public}s", texts.nullInfoLog);
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string(texts.nullInfoDesc));
    }
    sptr<TimeServiceClient> client = TimeServiceClient::GetInstance();
    if (client == nullptr) {
        PUSH_LOGE("%{public}s", texts.noClientLog);
        AddTimerEvent("GetInstance", "Get System Timer is Null");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Get system timer is null");
    }
    if (!op(*client, *timerInfo)) {
        PUSH_LOGE("%{public}s", texts.refusedLog);
        AddTimerEvent(texts.refusedApiName, "0");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string(texts.refusedDesc));
    }
    return PushBaseRsp();
}

uint64_t TriggerTimeMs(PushTimerInfo& timerInfo)
{
    return static_cast<uint64_t>(SystemClockUtil::GetBootTimeMillis() +
                                 static_cast<int64_t>(timerInfo.GetDuration()) * MS_PER_SECOND);
}

}  // namespace

PushBaseRsp PushTimerHelper::StartTimer(const std::shared_ptr<PushTimerInfo>& timerInfo)
{
    if (timerInfo == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_TIMER_FAILED, "StartTimer: timerInfo is Null");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "StartTimer: New Timer Error");
    }
    int type = timerInfo->TIMER_TYPE_REALTIME | timerInfo->TIMER_TYPE_EXACT;
    if (timerInfo->GetWakeup()) {
        type |= timerInfo->TIMER_TYPE_WAKEUP;
    }
    timerInfo->SetType(type);
    return StartNewTimer(timerInfo);
}

PushBaseRsp PushTimerHelper::StartNewTimer(const std::shared_ptr<PushTimerInfo>& timerInfo)
{
    if (timerInfo == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_TIMER_FAILED, "StartNewTimer: timerInfo is Null");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "StartNewTimer: New Timer Error");
    }
    sptr<TimeServiceClient> client = TimeServiceClient::GetInstance();
    uint64_t timerId = 0;
    PushBaseRsp rsp = SystemAbilityStatusService::DoSystemAbilityTaskWithRetry(TIME_SERVICE_ABILITY_ID, [&]() {
        timerId = client == nullptr ? 0 : client->CreateTimer(timerInfo);
        if (timerId == 0) {
            PUSH_LOGE("StartNewTimer: Create Timer Fail");
            AddTimerEvent("CreateTimer", std::to_string(timerId));
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "create timer fail: time service sa not started");
        }
        return PushBaseRsp();
    });
    if (!rsp.Succeed()) {
        PUSH_LOGE("create timer failed cause time service sa not started :%{public}s", rsp.GetInfo().c_str());
        return rsp;
    }
    timerInfo->SetTimerId(timerId);
    if (!client->StartTimer(timerId, TriggerTimeMs(*timerInfo))) {
        PUSH_LOGE("StartNewTimer: Start Timer Fail");
        AddTimerEvent("StartTimer", "0");
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "start timer fail");
    }
    return PushBaseRsp();
}

PushBaseRsp PushTimerHelper::StopTimer(const std::shared_ptr<PushTimerInfo>& timerInfo)
{
    TimerOpTexts texts;
    texts.nullInfoLog = "StopTimer: currTimerInfo is nullptr";
    texts.nullInfoDesc = "Current Timer of PushTimerHelper::StopTimer is Null";
    texts.noClientLog = "StopTimer: Get System Timer is Null";
    texts.refusedLog = "StopTimer: Stop Timer Failed";
    texts.refusedApiName = "StopTimer";
    texts.refusedDesc = "Stop timer failed";
    return RunTimerOp(timerInfo, texts, [](TimeServiceClient& client, PushTimerInfo& info) {
        return client.StopTimer(info.GetTimerId());
    });
}

PushBaseRsp PushTimerHelper::DestoryTimer(const std::shared_ptr<PushTimerInfo>& timerInfo)
{
    TimerOpTexts texts;
    texts.nullInfoLog = "DestoryTimer: currTimerInfo is nullptr";
    texts.nullInfoDesc = "current timer is null";
    texts.noClientLog = "DestoryTimer: Get System Timer is Null";
    texts.refusedLog = "DestoryTimer: Destroy Timer Failed";
    texts.refusedApiName = "DestroyTimer";
    texts.refusedDesc = "Destroy timer failed";
    return RunTimerOp(timerInfo, texts, [](TimeServiceClient& client, PushTimerInfo& info) {
        return client.DestroyTimer(info.GetTimerId());
    });
}

PushBaseRsp PushTimerHelper::RestartTimer(const std::shared_ptr<PushTimerInfo>& timerInfo)
{
    TimerOpTexts texts;
    texts.nullInfoLog = "RestartTimer: currTimerInfo is nullptr";
    // Names StopTimer: kept letter for letter.
    texts.nullInfoDesc = "Current Timer of PushTimerHelper::StopTimer is Null";
    texts.noClientLog = "RestartTimer: Get System Timer is Null";
    texts.refusedLog = "RestartTimer: ReStart Timer Failed";
    texts.refusedApiName = "StartTimer";
    texts.refusedDesc = "ReStart Timer failed";
    return RunTimerOp(timerInfo, texts, [](TimeServiceClient& client, PushTimerInfo& info) {
        return client.StartTimer(info.GetTimerId(), TriggerTimeMs(info));
    });
}

int64_t PushTimerHelper::GetTimestampMs()
{
    auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    int64_t micros = std::chrono::duration_cast<std::chrono::microseconds>(sinceEpoch).count();
    return micros / US_PER_MS;
}

}  // namespace Kavo::Push
