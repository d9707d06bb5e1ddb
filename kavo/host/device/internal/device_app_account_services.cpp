// The application manager, account service and time service of a simulated device.
#include "kavo/host/device/internal/device_services.h"
#include "kavo/host/ipc/ipc_skeleton.h"

namespace Kavo::Host::internal {

using AccountSA::ACCOUNT_NOT_FOUND;
using AccountSA::ErrCode;

int32_t DeviceAppMgr::ListRunningProcesses(const std::string& bundleName, int32_t userId,
                                           std::vector<RunningProcessInfo>& infos)
{
    if (auto code = state_->TakeFault(Device::APP_SERVICE, "ListRunningProcesses")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    if (state_->FindAccountLocked(userId) == nullptr) {
        return APP_MGR_INVALID_USER_ID;
    }
    infos.clear();
    const InstalledBundle* bundle = state_->FindBundleLocked(bundleName);
    for (const auto& process : state_->processes) {
        if (bundle == nullptr || process.bundleName != bundleName || process.userId != userId) {
            continue;
        }
        RunningProcessInfo info;
        info.processName = process.type == ProcessType::NORMAL ? bundleName : bundleName + ":extension";
        info.pid = process.pid;
        info.uid = DeviceState::UidLocked(*bundle, userId, process.appIndex);
        info.state = process.state;
        info.processType = process.type;
        info.extensionType = process.extensionType;
        info.bundleNames = {bundleName};
        info.appIndex = process.appIndex;
        infos.push_back(info);
    }
    return 0;
}

ErrCode DeviceAccountService::QueryActiveOsAccountIds(std::vector<int32_t>& ids)
{
    if (auto code = state_->TakeFault(Device::ACCOUNT_SERVICE, "QueryActiveOsAccountIds")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    ids.clear();
    for (const auto& account : state_->accounts) {
        if (account.active) {
            ids.push_back(account.localId);
        }
    }
    return 0;
}

ErrCode DeviceAccountService::GetOsAccountLocalIdFromUid(int32_t uid, int32_t& localId)
{
    if (auto code = state_->TakeFault(Device::ACCOUNT_SERVICE, "GetOsAccountLocalIdFromUid")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    if (uid < 0 || state_->FindAccountLocked(uid / UID_RANGE) == nullptr) {
        return ACCOUNT_NOT_FOUND;
    }
    localId = uid / UID_RANGE;
    return 0;
}

ErrCode DeviceAccountService::GetOsAccountLocalIdFromProcess(int32_t& localId)
{
    if (auto code = state_->TakeFault(Device::ACCOUNT_SERVICE, "GetOsAccountLocalIdFromProcess")) {
        return *code;
    }
    int32_t uid = IPCSkeleton::GetSelfUid();
    std::lock_guard<std::mutex> lock(state_->mutex);
    if (state_->FindAccountLocked(uid / UID_RANGE) == nullptr) {
        return ACCOUNT_NOT_FOUND;
    }
    localId = uid / UID_RANGE;
    return 0;
}

ErrCode DeviceAccountService::GetForegroundOsAccounts(std::vector<AccountSA::ForegroundOsAccount>& accounts)
{
    if (auto code = state_->TakeFault(Device::ACCOUNT_SERVICE, "GetForegroundOsAccounts")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    accounts.clear();
    uint64_t display = 0;
    for (const auto& account : state_->accounts) {
        if (account.foreground) {
            accounts.push_back({account.localId, display++});
        }
    }
    return 0;
}

ErrCode DeviceAccountService::GetForegroundOsAccountLocalId(int32_t& localId)
{
    if (auto code = state_->TakeFault(Device::ACCOUNT_SERVICE, "GetForegroundOsAccountLocalId")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    for (const auto& account : state_->accounts) {
        if (account.foreground) {
            localId = account.localId;
            return 0;
        }
    }
    return ACCOUNT_NOT_FOUND;
}

ErrCode DeviceAccountService::IsOsAccountVerified(int32_t localId, bool& isVerified)
{
    if (auto code = state_->TakeFault(Device::ACCOUNT_SERVICE, "IsOsAccountVerified")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    const OsAccount* account = state_->FindAccountLocked(localId);
    if (account == nullptr) {
        return ACCOUNT_NOT_FOUND;
    }
    isVerified = account->verified;
    return 0;
}

ErrCode DeviceAccountService::GetKavoAccountInfo(AccountSA::KavoAccountInfo& info)
{
    if (auto code = state_->TakeFault(Device::ACCOUNT_SERVICE, "GetKavoAccountInfo")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    info.uid = state_->distributedUid;
    info.name = info.uid == AccountSA::ANONYMOUS_ACCOUNT_UID ? "" : "owner";
    info.status = info.uid == AccountSA::ANONYMOUS_ACCOUNT_UID ? "ACCOUNT_STATE_UNBOUND" : "ACCOUNT_STATE_LOGIN";
    return 0;
}

uint64_t DeviceTimeService::CreateTimer(std::shared_ptr<MiscServices::ITimerInfo> timerInfo)
{
    if (state_->TakeFault(Device::TIME_SERVICE, "CreateTimer")) {
        return 0;
    }
    return TimeService::CreateTimer(std::move(timerInfo));
}

bool DeviceTimeService::StartTimer(uint64_t timerId, uint64_t triggerTimeMs)
{
    return !state_->TakeFault(Device::TIME_SERVICE, "StartTimer") && TimeService::StartTimer(timerId, triggerTimeMs);
}

bool DeviceTimeService::StopTimer(uint64_t timerId)
{
    return !state_->TakeFault(Device::TIME_SERVICE, "StopTimer") && TimeService::StopTimer(timerId);
}

bool DeviceTimeService::DestroyTimer(uint64_t timerId)
{
    return !state_->TakeFault(Device::TIME_SERVICE, "DestroyTimer") && TimeService::DestroyTimer(timerId);
}

}  // namespace Kavo::Host::internal
