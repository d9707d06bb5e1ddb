// The standard services of a simulated device, each backed by the device's shared state. Every
// operation first consults the device's faults, then answers from the state under its lock;
// all are callable from any thread.
#ifndef KAVO_HOST_DEVICE_INTERNAL_DEVICE_SERVICES_H
#define KAVO_HOST_DEVICE_INTERNAL_DEVICE_SERVICES_H

#include <memory>

#include "kavo/host/account/iaccount_service.h"
#include "kavo/host/appmgr/iapp_mgr.h"
#include "kavo/host/bundle/ibundle_mgr.h"
#include "kavo/host/device/internal/device_state.h"
#include "kavo/host/time/time_service.h"

namespace Kavo::Host::internal {

using AAFwk::Want;
using namespace AppExecFwk;

class DeviceBundleMgr : public IBundleMgr {
public:
    explicit DeviceBundleMgr(std::shared_ptr<DeviceState> state) : state_(std::move(state)) {}

    ErrCode FindExtensionAbilities(const Want& want, int32_t flags, int32_t userId,
                                   std::vector<ExtensionAbilityInfo>& infos) override;
    ErrCode FindExtensionAbilities(const Want& want, ExtensionAbilityType type, int32_t flags, int32_t userId,
                                   std::vector<ExtensionAbilityInfo>& infos) override;
    ErrCode FindAbilities(const Want& want, int32_t flags, int32_t userId, std::vector<AbilityInfo>& infos) override;
    bool QueryAbilityInfo(const Want& want, int32_t flags, int32_t userId, AbilityInfo& info) override;
    bool GetApplicationInfo(const std::string& bundleName, ApplicationFlag flag, int32_t userId,
                            ApplicationInfo& info) override;
    ErrCode GetNameForUid(int32_t uid, std::string& bundleName) override;
    int32_t GetUidByBundleName(const std::string& bundleName, int32_t userId, int32_t appIndex) override;
    ErrCode GetBundleInfoV9(const std::string& bundleName, int32_t flags, BundleInfo& info, int32_t userId) override;
    ErrCode GetCloneRecord(const std::string& bundleName, int32_t flags, int32_t appIndex, BundleInfo& info,
                           int32_t userId) override;
    ErrCode GetBundleNameAndCloneIndex(int32_t uid, std::string& bundleName, int32_t& appIndex) override;
    ErrCode CheckBundleInstalled(const std::string& bundleName, int32_t userId, int32_t appIndex,
                                 bool& isInstalled) override;

private:
    ErrCode QueryExtensions(const Want& want, const ExtensionAbilityType* type, int32_t userId,
                            std::vector<ExtensionAbilityInfo>& infos);
    ErrCode FillBundleInfo(const std::string& bundleName, int32_t appIndex, int32_t userId, BundleInfo& info);

    std::shared_ptr<DeviceState> state_;
};

class DeviceAppMgr : public IAppMgr {
public:
    explicit DeviceAppMgr(std::shared_ptr<DeviceState> state) : state_(std::move(state)) {}

    int32_t ListRunningProcesses(const std::string& bundleName, int32_t userId,
                                 std::vector<RunningProcessInfo>& infos) override;

private:
    std::shared_ptr<DeviceState> state_;
};

class DeviceAccountService : public AccountSA::IAccountService {
public:
    explicit DeviceAccountService(std::shared_ptr<DeviceState> state) : state_(std::move(state)) {}

    AccountSA::ErrCode QueryActiveOsAccountIds(std::vector<int32_t>& ids) override;
    AccountSA::ErrCode GetOsAccountLocalIdFromUid(int32_t uid, int32_t& localId) override;
    AccountSA::ErrCode GetOsAccountLocalIdFromProcess(int32_t& localId) override;
    AccountSA::ErrCode GetForegroundOsAccounts(std::vector<AccountSA::ForegroundOsAccount>& accounts) override;
    AccountSA::ErrCode GetForegroundOsAccountLocalId(int32_t& localId) override;
    AccountSA::ErrCode IsOsAccountVerified(int32_t localId, bool& isVerified) override;
    AccountSA::ErrCode GetKavoAccountInfo(AccountSA::KavoAccountInfo& info) override;

private:
    std::shared_ptr<DeviceState> state_;
};

class DeviceTimeService : public MiscServices::TimeService {
public:
    explicit DeviceTimeService(std::shared_ptr<DeviceState> state) : state_(std::move(state)) {}

    uint64_t CreateTimer(std::shared_ptr<MiscServices::ITimerInfo> timerInfo) override;
    bool StartTimer(uint64_t timerId, uint64_t triggerTimeMs) override;
    bool StopTimer(uint64_t timerId) override;
    bool DestroyTimer(uint64_t timerId) override;

private:
    std::shared_ptr<DeviceState> state_;
};

}  // namespace Kavo::Host::internal

#endif  // KAVO_HOST_DEVICE_INTERNAL_DEVICE_SERVICES_H
