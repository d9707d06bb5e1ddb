#include "kavo/host/device/device.h"

#include <algorithm>

#include "kavo/host/context/application_context.h"
#include "kavo/host/device/internal/device_services.h"
#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/host/samgr/system_ability_manager.h"

namespace Kavo::Host {

using internal::DeviceState;

Device::Device() : state_(std::make_shared<DeviceState>()), timeService_(MakeSptr<internal::DeviceTimeService>(state_))
{
    services_ = {
        {ACCOUNT_SERVICE, AsRemoteObject<AccountSA::IAccountService>(MakeSptr<internal::DeviceAccountService>(state_))},
        {BUNDLE_SERVICE, AsRemoteObject<AppExecFwk::IBundleMgr>(MakeSptr<internal::DeviceBundleMgr>(state_))},
        {APP_SERVICE, AsRemoteObject<AppExecFwk::IAppMgr>(MakeSptr<internal::DeviceAppMgr>(state_))},
        {TIME_SERVICE, AsRemoteObject<MiscServices::ITimeService>(timeService_)},
    };
}

Device::~Device()
{
    Deactivate();
}

void Device::InstallBundle(const InstalledBundle& bundle)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    auto& bundles = state_->bundles;
    bundles.erase(std::remove_if(bundles.begin(), bundles.end(),
                                 [&bundle](const InstalledBundle& b) { return b.name == bundle.name; }),
                  bundles.end());
    bundles.push_back(bundle);
}

void Device::UninstallBundle(const std::string& name)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    auto& bundles = state_->bundles;
    bundles.erase(
        std::remove_if(bundles.begin(), bundles.end(), [&name](const InstalledBundle& b) { return b.name == name; }),
        bundles.end());
    auto& processes = state_->processes;
    processes.erase(std::remove_if(processes.begin(), processes.end(),
                                   [&name](const RunningProcess& p) { return p.bundleName == name; }),
                    processes.end());
}

void Device::StartProcess(const RunningProcess& process)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->processes.push_back(process);
}

void Device::StopProcess(int32_t pid)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    auto& processes = state_->processes;
    processes.erase(
        std::remove_if(processes.begin(), processes.end(), [pid](const RunningProcess& p) { return p.pid == pid; }),
        processes.end());
}

void Device::AddAccount(const OsAccount& account)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->accounts.push_back(account);
}

void Device::SetDistributedAccount(const std::string& uid)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->distributedUid = uid;
}

void Device::SetProcessIdentity(const std::string& bundleName, int32_t uid)
{
    processBundle_ = bundleName;
    processUid_ = uid;
    if (active_) {
        AbilityRuntime::Context::SetApplicationContext(processBundle_);
        IPCSkeleton::SetProcessUid(processUid_);
    }
}

void Device::SetCallingUid(int32_t uid)
{
    IPCSkeleton::SetCallingUid(uid);
}

int32_t Device::UidOf(const std::string& bundleName, int32_t userId, int32_t appIndex) const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    const InstalledBundle* bundle = state_->FindBundleLocked(bundleName);
    return bundle == nullptr ? AppExecFwk::INVALID_UID : DeviceState::UidLocked(*bundle, userId, appIndex);
}

void Device::Register(int32_t serviceId)
{
    for (const auto& [id, remote] : services_) {
        if (id == serviceId) {
            SystemAbilityManagerClient::GetInstance().AddSystemAbility(id, remote);
        }
    }
}

void Device::Activate()
{
    if (active_) {
        return;
    }
    active_ = true;
    {
        std::lock_guard<std::mutex> lock(delayMutex_);
        cancelDelays_ = false;
    }
    std::set<int32_t> late;
    for (const auto& pending : pendingStarts_) {
        late.insert(pending.first);
    }
    for (const auto& entry : services_) {
        if (absent_.count(entry.first) == 0 && late.count(entry.first) == 0) {
            Register(entry.first);
        }
    }
    for (const auto& [id, delay] : pendingStarts_) {
        RegisterLater(id, delay);
    }
    pendingStarts_.clear();
    if (!processBundle_.empty()) {
        AbilityRuntime::Context::SetApplicationContext(processBundle_);
    }
    IPCSkeleton::SetProcessUid(processUid_);
}

void Device::Deactivate()
{
    if (!active_) {
        return;
    }
    StopDelayedStarts();
    for (const auto& entry : services_) {
        SystemAbilityManagerClient::GetInstance().RemoveSystemAbility(entry.first);
    }
    AbilityRuntime::Context::ClearApplicationContext();
    IPCSkeleton::SetProcessUid(-1);
    IPCSkeleton::ResetCallingUid();
    active_ = false;
}

void Device::SetReturnCode(int32_t serviceId, const std::string& operation, int32_t code, bool once)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->faults[{serviceId, operation}] = internal::Fault{code, once};
}

void Device::ClearReturnCodes()
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->faults.clear();
}

void Device::SetServiceAbsent(int32_t serviceId, bool absent)
{
    if (absent) {
        absent_.insert(serviceId);
        if (active_) {
            SystemAbilityManagerClient::GetInstance().RemoveSystemAbility(serviceId);
        }
        return;
    }
    absent_.erase(serviceId);
    if (active_) {
        Register(serviceId);
    }
}

void Device::StartServiceAfter(int32_t serviceId, std::chrono::milliseconds delay)
{
    absent_.erase(serviceId);
    if (!active_) {
        pendingStarts_.emplace_back(serviceId, delay);
        return;
    }
    SystemAbilityManagerClient::GetInstance().RemoveSystemAbility(serviceId);
    RegisterLater(serviceId, delay);
}

void Device::RegisterLater(int32_t serviceId, std::chrono::milliseconds delay)
{
    sptr<IRemoteObject> remote;
    for (const auto& [id, object] : services_) {
        if (id == serviceId) {
            remote = object;
        }
    }
    if (remote == nullptr) {
        return;
    }
    delayThreads_.emplace_back([this, serviceId, delay, remote]() {
        std::unique_lock<std::mutex> lock(delayMutex_);
        if (delayCancelled_.wait_for(lock, delay, [this] { return cancelDelays_; })) {
            return;
        }
        lock.unlock();
        SystemAbilityManagerClient::GetInstance().AddSystemAbility(serviceId, remote);
    });
}

void Device::StopDelayedStarts()
{
    {
        std::lock_guard<std::mutex> lock(delayMutex_);
        cancelDelays_ = true;
    }
    delayCancelled_.notify_all();
    for (auto& thread : delayThreads_) {
        thread.join();
    }
    delayThreads_.clear();
}

MiscServices::TimeService& Device::GetTimeService()
{
    return *timeService_;
}

}  // namespace Kavo::Host
