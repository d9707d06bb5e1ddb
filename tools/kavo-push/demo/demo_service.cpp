#include "demo/demo_service.h"

#include <unistd.h>

#include <chrono>

#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/platform/push_account_helper.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "kavo/push/validate/remote_notification_extension_validate.h"
#include "records/record_json.h"
#include "request/extension_process.h"
#include "request/request_steps.h"

namespace KavoTool {

namespace {

using namespace Kavo::Push;
using Kavo::AppExecFwk::AppProcessState;
using Kavo::AppExecFwk::ExtensionAbilityType;
using Kavo::AppExecFwk::ProcessType;

constexpr auto EXIT_GRACE = std::chrono::milliseconds(2000);
constexpr auto NO_GRACE = std::chrono::milliseconds(0);
constexpr int MS_PER_SECOND = 1000;

// One request's way through the service.
struct Run {
    const DemoScenario& scenario;
    DemoTrace& trace;
    Kavo::Host::Device& device;
    Kavo::Parcel requestParcel;
    Kavo::sptr<RemoteNotificationRequest> request;
    ClientUserInfo caller;
    Kavo::sptr<RemoteNotificationResult> result;
};

std::string Kib(int32_t value)
{
    return std::to_string(value) + " KiB";
}

PushBaseRsp ReadRequest(Run& run)
{
    const DemoScenario& s = run.scenario;
    RemoteNotificationInfo info("mail", "2 new messages", 7);
    RemoteNotificationRequest(s.survivalTime, s.overlayIconSize, s.contentSize, info).Marshalling(run.requestParcel);
    run.trace.Crossed("application", "service", run.requestParcel);
    run.request = RemoteNotificationRequest::Unmarshalling(run.requestParcel);
    run.requestParcel.RewindRead(0);
    PushBaseRsp rsp = run.request != nullptr ? PushBaseRsp() : PushBaseRsp(PUSH_ERR_INVALID_PARAM);
    run.trace.Step("read RemoteNotificationRequest", rsp,
                   "survival time " + std::to_string(s.survivalTime) + " s, overlay icon limit " +
                       Kib(s.overlayIconSize) + ", content limit " + Kib(s.contentSize));
    return rsp;
}

PushBaseRsp EstablishCaller(Run& run)
{
    auto start = std::chrono::steady_clock::now();
    std::vector<int> accounts;
    PushBaseRsp rsp = PushAccountHelper::GetForegroundOsAccounts(accounts);
    auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    std::string found = accounts.empty() ? "none" : std::to_string(accounts[0]);
    if (!run.trace.Step("foreground account", rsp,
                        "account " + found + ", answered after " + std::to_string(waited.count()) + " ms")) {
        return rsp;
    }
    rsp = PushBundleHelper::GetIpcClientUserInfo(run.caller);
    const ClientUserInfo& c = run.caller;
    run.trace.Step("caller identity", rsp,
                   "uid " + std::to_string(c.uid) + ": " + c.bundleName + ", account " + std::to_string(c.userId) +
                       ", app index " + std::to_string(c.appIndex));
    return rsp;
}

PushBaseRsp CheckExtension(Run& run)
{
    Kavo::AAFwk::Want want;
    want.SetBundle(run.caller.bundleName);
    PushBaseRsp rsp = PushBundleHelper::ExtensionExist(want, run.caller.userId,
                                                       ExtensionAbilityType::REMOTE_NOTIFICATION, run.caller.appIndex);
    if (!run.trace.Step("remote-notification extension exists", rsp, run.caller.bundleName)) {
        return rsp;
    }
    bool running = PushBundleHelper::IsGivenExtensionProcessRunning(run.caller.bundleName, run.caller.userId,
                                                                    ExtensionAbilityType::REMOTE_NOTIFICATION);
    int pid = 0;
    bool foreground = false;
    rsp = PushBundleHelper::IsRemoteForegrounding(run.caller, pid, foreground, false);
    run.trace.Step("extension process", running ? "running" : "not running",
                   "application pid " + std::to_string(pid) +
                       (foreground ? " in the foreground" : " in the background"));
    return rsp;
}

// The extension's answer, or the public failure of the call.
PushBaseRsp CallExtension(Run& run, ExtensionProcess& extension, Kavo::Parcel& reply)
{
    auto deadline = std::chrono::milliseconds(int64_t{run.scenario.survivalTime} * MS_PER_SECOND);
    Kavo::IpcResult result = extension.Channel().Transact(run.requestParcel, reply, deadline);
    run.trace.Crossed("service", "extension", run.requestParcel);
    PushBaseRsp rsp = ExtensionCallResponse(result);
    if (rsp.Succeed()) {
        run.trace.Crossed("extension", "service", reply);
    }
    run.trace.Step("extension call", rsp.Succeed() ? "ok" : "failed",
                   std::string(Kavo::IpcResultName(result)) + " within the survival time of " +
                       std::to_string(run.scenario.survivalTime) + " s");
    return rsp;
}

PushBaseRsp RunExtension(Run& run, Kavo::Parcel& reply)
{
    const std::string& bundle = run.caller.bundleName;
    const std::string extensionName = PushApps(0).front().extension;
    ReportExtensionStart(run.caller, extensionName);
    ExtensionProcess extension;
    std::string command;
    ExtensionLaunch launch;
    launch.behaviour = run.scenario.behaviour;
    if (!extension.Start(launch, command)) {
        run.trace.Step("start extension", "failed", "no process could be started");
        return PushBaseRsp(PUSH_ERR_EXTENSION_CALLBACK_FAILED);
    }
    pid_t pid = extension.Pid();
    run.trace.SetProcesses(getpid(), pid);
    run.device.StartProcess({bundle, run.caller.userId, run.caller.appIndex, pid, AppProcessState::READY,
                             ProcessType::EXTENSION, ExtensionAbilityType::REMOTE_NOTIFICATION});
    run.trace.Step("start extension", "ok", "pid " + std::to_string(pid) + ": " + command);
    PushBaseRsp rsp = CallExtension(run, extension, reply);
    // A crashed extension may still be on its way out; only one that missed its deadline is killed at once.
    bool timedOut = rsp.GetErr() == PUSH_ERR_EXTENSION_CALLBACK_TIMEOUT;
    run.trace.Step("extension process ends", "ok", extension.Finish(timedOut ? NO_GRACE : EXIT_GRACE));
    run.device.StopProcess(pid);
    if (!rsp.Succeed()) {
        ReportExtensionError(run.caller, extensionName, rsp.GetErrAsInt32());
    }
    return rsp;
}

int32_t IntParam(const Kavo::AAFwk::WantParams& params, const std::string& key)
{
    const auto* value = params.GetParam(key);
    return value != nullptr && std::holds_alternative<int32_t>(*value) ? std::get<int32_t>(*value) : -1;
}

// Who answered, as the extension put it in the result's parameters.
std::string Answerer(const RemoteNotificationResult& result)
{
    if (result.GetParameters() == nullptr) {
        return "";
    }
    const auto& params = *result.GetParameters();
    return " from pid " + std::to_string(IntParam(params, "extensionPid")) + ", which saw calling uid " +
           std::to_string(IntParam(params, "callingUid")) + " in the kernel's credentials of the socket";
}

// The result read back; content and icon checked against the request.
PushBaseRsp CheckResult(Run& run, Kavo::Parcel& reply)
{
    ResultCheck check;
    PushBaseRsp rsp = CheckExtensionResult(*run.request, reply, run.result, check);
    if (!check.read) {
        run.trace.Step("read RemoteNotificationResult", "failed", "the reply is not a result");
        return rsp;
    }
    run.trace.Step("read RemoteNotificationResult", "ok",
                   std::to_string(reply.GetDataSize()) + " bytes" + Answerer(*run.result));
    if (!run.trace.Step("validate content", rsp, std::to_string(check.contentBytes) + " bytes")) {
        return rsp;
    }
    if (check.icon.Succeed()) {
        run.trace.Step("validate overlay icon", "ok",
                       run.result->GetContent().GetOverlayIcon() == nullptr ? "no icon" : "kept");
    } else {
        run.trace.Step("validate overlay icon", "removed", check.icon.GetInfo());
    }
    return rsp;
}

Json::Value ResultJson(const RemoteNotificationResult& result)
{
    Kavo::Parcel parcel;
    Json::Value json;
    if (!result.Marshalling(parcel) || !FindRecordType("RemoteNotificationResult")->decode(parcel, json)) {
        return Json::Value();
    }
    return json;
}

PushBaseRsp Serve(Run& run)
{
    PushBaseRsp rsp = ReadRequest(run);
    if (rsp.Succeed()) {
        rsp = EstablishCaller(run);
    }
    if (rsp.Succeed()) {
        rsp = RemoteNotificationExtensionValidate::ValidateRemoteNotificationRequest(*run.request);
        run.trace.Step("validate request", rsp, "");
    }
    if (rsp.Succeed()) {
        rsp = CheckExtension(run);
    }
    Kavo::Parcel reply;
    if (rsp.Succeed()) {
        rsp = RunExtension(run, reply);
    }
    if (rsp.Succeed()) {
        rsp = CheckResult(run, reply);
    }
    return rsp;
}

}  // namespace

void RunTypicalRequest(const DemoScenario& scenario, DemoTrace& trace)
{
    Kavo::SysEventRecorder events;
    trace.SetProcesses(getpid(), 0);
    PushBaseRsp rsp;
    {
        DemoDevice device(scenario);
        Run run{scenario, trace, device.Get(), Kavo::Parcel(), nullptr, ClientUserInfo(), nullptr};
        rsp = PublicResponse(Serve(run));
        trace.Step("return RemoteNotificationResult", rsp.Succeed() ? "ok" : "failed",
                   rsp.Succeed() ? "" : std::to_string(rsp.GetErrAsInt32()));
        trace.Finish(rsp, rsp.Succeed() ? ResultJson(*run.result) : Json::Value());
    }
    trace.SetEvents(events.Events());
}

}  // namespace KavoTool
