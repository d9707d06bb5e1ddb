#include "service/push_service.h"

#include <sys/stat.h>
#include <unistd.h>

#include <iostream>
#include <sstream>

#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/platform/push_account_helper.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "kavo/push/validate/remote_notification_extension_validate.h"
#include "request/request_steps.h"
#include "service/proc_sample.h"
#include "service/service_reply.h"

namespace KavoTool {

namespace {

using namespace Kavo::Push;
using Kavo::AppExecFwk::ExtensionAbilityType;

constexpr int32_t FIRST_MAIN_PID = 3001;
constexpr int MS_PER_SECOND = 1000;
// A request's reply is due within this time of its first byte: room for the longest wait of the
// platform queries, a neighbour's hang ahead of it and its own survival time.
constexpr auto REPLY_DEADLINE = std::chrono::seconds(120);

}  // namespace

PushService::PushService(ServiceOptions options) : options_(std::move(options)) {}

PushService::~PushService()
{
    Stop();
}

bool PushService::Start(std::string& error)
{
    int32_t pid = FIRST_MAIN_PID;
    for (const PushApp& app : PushApps(options_.extraApps)) {
        InstallPushApp(device_, app, true, pid++);
        hosts_.push_back(std::make_unique<ExtensionHost>(app, options_.runExtensionsAsApps ? PushAppUid(app) : -1,
                                                         device_, counts_));
    }
    ActivateServiceDevice(device_);
    Kavo::IpcServerOptions serverOptions;
    serverOptions.deadline = REPLY_DEADLINE;
    serverOptions.maxConnections = options_.maxConnections;
    server_ = std::make_unique<Kavo::IpcServer>(
        [this](Kavo::Parcel& request, Kavo::Parcel& reply) { return Handle(request, reply); }, serverOptions);
    if (!server_->Listen(options_.socket)) {
        error = "cannot listen on " + options_.socket + " (taken, or the path is too long or not writable)";
        return false;
    }
    // Applications run under uids of their own and must be able to connect.
    if (options_.socket[0] != '@') {
        chmod(options_.socket.c_str(), 0666);
    }
    if (options_.chaos) {
        chaos_ = std::make_unique<DeviceChaos>(device_, options_.chaosLongest, options_.chaosSeed,
                                               [](const std::string& line) { std::cerr << line << std::endl; });
        chaos_->Start();
    }
    return true;
}

void PushService::StopIdleExtensions()
{
    for (auto& host : hosts_) {
        host->StopIfIdle(options_.extensionIdle);
    }
}

void PushService::Stop()
{
    // The platform services come back first, so requests waiting for one end soon.
    if (chaos_ != nullptr) {
        chaos_->Stop();
    }
    if (server_ != nullptr) {
        server_->Stop();
    }
    for (auto& host : hosts_) {
        host->Stop();
    }
    device_.Deactivate();
}

ExtensionHost* PushService::HostOf(const std::string& bundle)
{
    for (auto& host : hosts_) {
        if (host->App().bundle == bundle) {
            return host.get();
        }
    }
    return nullptr;
}

PushBaseRsp PushService::Serve(Kavo::Parcel& requestParcel, Kavo::sptr<RemoteNotificationResult>& result)
{
    auto request = RemoteNotificationRequest::Unmarshalling(requestParcel);
    if (request == nullptr) {
        return PushBaseRsp(PUSH_ERR_INVALID_PARAM);
    }
    std::vector<int> accounts;
    ClientUserInfo caller;
    PushBaseRsp rsp = PushAccountHelper::GetForegroundOsAccounts(accounts);
    if (rsp.Succeed()) {
        rsp = PushBundleHelper::GetIpcClientUserInfo(caller);
    }
    if (rsp.Succeed()) {
        rsp = RemoteNotificationExtensionValidate::ValidateRemoteNotificationRequest(*request);
    }
    if (rsp.Succeed()) {
        Kavo::AAFwk::Want want;
        want.SetBundle(caller.bundleName);
        rsp = PushBundleHelper::ExtensionExist(want, caller.userId, ExtensionAbilityType::REMOTE_NOTIFICATION,
                                               caller.appIndex);
    }
    int pid = 0;
    bool foreground = false;
    if (rsp.Succeed()) {
        PushBundleHelper::IsGivenExtensionProcessRunning(caller.bundleName, caller.userId,
                                                         ExtensionAbilityType::REMOTE_NOTIFICATION);
        rsp = PushBundleHelper::IsRemoteForegrounding(caller, pid, foreground, false);
    }
    ExtensionHost* host = rsp.Succeed() ? HostOf(caller.bundleName) : nullptr;
    if (rsp.Succeed() && host == nullptr) {
        rsp = PushBaseRsp(PUSH_ERR_EXTENSION_NOT_EXIST);
    }
    Kavo::Parcel reply;
    if (rsp.Succeed()) {
        requestParcel.RewindRead(0);
        auto survival = std::chrono::milliseconds(int64_t{request->GetSurvivalTime()} * MS_PER_SECOND);
        rsp = host->Call(caller, requestParcel, reply, survival);
    }
    if (rsp.Succeed()) {
        ResultCheck check;
        rsp = CheckExtensionResult(*request, reply, result, check);
    }
    return PublicResponse(rsp);
}

bool PushService::Handle(Kavo::Parcel& request, Kavo::Parcel& reply)
{
    auto start = std::chrono::steady_clock::now();
    Kavo::sptr<RemoteNotificationResult> result;
    PushBaseRsp rsp = Serve(request, result);
    if (!WriteServiceReply(reply, rsp, result.GetRefPtr())) {
        // A result over the reply's size limit cannot reach the application.
        rsp = PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL);
        reply = Kavo::Parcel();
        WriteServiceReply(reply, rsp, nullptr);
    }
    Record(rsp.GetErrAsInt32(), std::chrono::steady_clock::now() - start);
    return true;
}

void PushService::Record(int32_t code, std::chrono::steady_clock::duration took)
{
    auto micros = std::chrono::duration_cast<std::chrono::microseconds>(took).count();
    std::lock_guard<std::mutex> lock(statsMutex_);
    ++codes_[code];
    latency_.Add(static_cast<uint64_t>(micros));
}

std::string PushService::Totals() const
{
    std::ostringstream out;
    {
        std::lock_guard<std::mutex> lock(statsMutex_);
        out << "requests: " << latency_.Count() << "\n";
        for (const auto& [code, count] : codes_) {
            std::string message = PublicMessage(code);
            out << "  code " << code << ": " << count << (message.empty() ? "" : " (" + message + ")") << "\n";
        }
        out << "latency: p50 " << FormatMicros(latency_.Percentile(0.5)) << ", p99 "
            << FormatMicros(latency_.Percentile(0.99)) << ", max " << FormatMicros(latency_.Max()) << "\n";
    }
    out << "extensions: " << counts_.starts << " started, " << counts_.crashes << " crashed, " << counts_.kills
        << " killed past their survival time, " << counts_.idleStops << " stopped when idle\n";
    if (chaos_ != nullptr) {
        out << "chaos windows: " << chaos_->Windows() << "\n";
    }
    ProcSample self;
    SampleProcess(getpid(), self);
    out << "process: " << DescribeSample(self) << "\n";
    return out.str();
}

}  // namespace KavoTool
