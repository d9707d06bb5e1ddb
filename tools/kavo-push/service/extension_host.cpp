#include "service/extension_host.h"

#include "request/request_steps.h"

namespace KavoTool {

namespace {

using Kavo::AppExecFwk::AppProcessState;
using Kavo::AppExecFwk::ExtensionAbilityType;
using Kavo::AppExecFwk::ProcessType;
using Kavo::Push::ClientUserInfo;
using Kavo::Push::PushBaseRsp;

// A process that closed its end is on its way out: it gets this long to exit before it is killed.
constexpr auto EXIT_GRACE = std::chrono::milliseconds(2000);
constexpr auto NO_GRACE = std::chrono::milliseconds(0);

}  // namespace

ExtensionHost::ExtensionHost(PushApp app, int32_t runAs, Kavo::Host::Device& device, ExtensionCounts& counts)
    : app_(std::move(app)), runAs_(runAs), device_(device), counts_(counts)
{
}

ExtensionHost::~ExtensionHost()
{
    Stop();
}

bool ExtensionHost::StartLocked(const ClientUserInfo& caller)
{
    ReportExtensionStart(caller, app_.extension);
    ExtensionLaunch launch{ExtensionBehaviour::AS_ASKED, app_.bundle, runAs_};
    std::string command;
    if (!process_.Start(launch, command)) {
        return false;
    }
    counts_.starts.fetch_add(1, std::memory_order_relaxed);
    device_.StartProcess({app_.bundle, caller.userId, caller.appIndex, process_.Pid(), AppProcessState::READY,
                          ProcessType::EXTENSION, ExtensionAbilityType::REMOTE_NOTIFICATION});
    return true;
}

void ExtensionHost::EndLocked(std::chrono::milliseconds grace)
{
    pid_t pid = process_.Pid();
    process_.Finish(grace);
    device_.StopProcess(pid);
}

PushBaseRsp ExtensionHost::Call(const ClientUserInfo& caller, const Kavo::Parcel& request, Kavo::Parcel& reply,
                                std::chrono::milliseconds survival)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (!process_.Running() && !StartLocked(caller)) {
        ReportExtensionError(caller, app_.extension, Kavo::Push::PUSH_ERR_EXTENSION_CALLBACK_FAILED);
        return PushBaseRsp(Kavo::Push::PUSH_ERR_EXTENSION_CALLBACK_FAILED);
    }
    PushBaseRsp rsp = ExtensionCallResponse(process_.Channel().Transact(request, reply, survival));
    lastUsed_ = Clock::now();
    if (rsp.Succeed()) {
        return rsp;
    }
    // A process that missed its deadline is killed at once; one that failed the call is ending.
    bool timedOut = rsp.GetErr() == Kavo::Push::PUSH_ERR_EXTENSION_CALLBACK_TIMEOUT;
    (timedOut ? counts_.kills : counts_.crashes).fetch_add(1, std::memory_order_relaxed);
    EndLocked(timedOut ? NO_GRACE : EXIT_GRACE);
    ReportExtensionError(caller, app_.extension, rsp.GetErrAsInt32());
    return rsp;
}

void ExtensionHost::StopIfIdle(std::chrono::milliseconds idle)
{
    std::unique_lock<std::mutex> lock(mutex_, std::try_to_lock);
    if (lock.owns_lock() && process_.Running() && Clock::now() - lastUsed_ >= idle) {
        counts_.idleStops.fetch_add(1, std::memory_order_relaxed);
        EndLocked(EXIT_GRACE);
    }
}

void ExtensionHost::Stop()
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (process_.Running()) {
        EndLocked(EXIT_GRACE);
    }
}

}  // namespace KavoTool
