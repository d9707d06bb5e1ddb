// Device: the simulated device behind the standard platform services. A test, the demo or the
// command-line tool fills it (installed bundles, running processes, OS accounts, the
// distributed account, the identity of the process and of the caller), then activates it:
// the account service (200), package manager (401), application manager (501) and time
// service (3702) are registered, backed by its state, until it is deactivated or leaves its
// scope. Each service can be told to answer a chosen code for a chosen operation, to be
// absent, or to come up after a delay on another thread.
//
// The device's methods belong to the thread that owns it; the services it registers read its
// state under a lock and may be called from any thread.
//
//   Kavo::Host::Device device;
//   device.AddAccount({100, true, true, true});
//   device.InstallBundle({"com.example.mail", 10042});
//   device.Activate();
//   device.SetReturnCode(401, "GetBundleInfoV9", 5);  // the next bundle-record query answers 5
#ifndef KAVO_HOST_DEVICE_DEVICE_H
#define KAVO_HOST_DEVICE_DEVICE_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "kavo/host/appmgr/iapp_mgr.h"
#include "kavo/host/bundle/bundle_info.h"
#include "kavo/host/host_export.h"
#include "kavo/host/time/time_service.h"

namespace Kavo::Host {

// An installed application. Under account u its clone of app index k runs as uid
// u * 200000 + appId + k (k = 0 is the main application).
struct InstalledBundle {
    InstalledBundle() = default;
    InstalledBundle(std::string bundleName, int32_t bundleAppId) : name(std::move(bundleName)), appId(bundleAppId) {}

    std::string name;
    int32_t appId = 0;
    std::vector<int32_t> cloneIndexes;     // app indexes of the clones (1, 2, ...)
    std::vector<int32_t> userIds = {100};  // accounts it is installed for
    bool isSystemApp = false;
    bool asanEnabled = false;
    bool tsanEnabled = false;
    bool gwpAsanEnabled = false;
    bool hwAsanEnabled = false;
    std::vector<AppExecFwk::AbilityInfo> abilities;
    // Each belongs to the clone named by its appIndex.
    std::vector<AppExecFwk::ExtensionAbilityInfo> extensions;
};

// A running process of an installed bundle; its uid follows from the bundle.
struct RunningProcess {
    RunningProcess() = default;
    RunningProcess(std::string bundle, int32_t user, int32_t index, int32_t processId,
                   AppExecFwk::AppProcessState processState = AppExecFwk::AppProcessState::READY,
                   AppExecFwk::ProcessType processType = AppExecFwk::ProcessType::NORMAL,
                   AppExecFwk::ExtensionAbilityType extension = AppExecFwk::ExtensionAbilityType::UNSPECIFIED)
        : bundleName(std::move(bundle)), userId(user), appIndex(index), pid(processId), state(processState),
          type(processType), extensionType(extension)
    {
    }

    std::string bundleName;
    int32_t userId = 100;
    int32_t appIndex = 0;
    int32_t pid = 0;
    AppExecFwk::AppProcessState state = AppExecFwk::AppProcessState::READY;
    AppExecFwk::ProcessType type = AppExecFwk::ProcessType::NORMAL;
    AppExecFwk::ExtensionAbilityType extensionType = AppExecFwk::ExtensionAbilityType::UNSPECIFIED;
};

struct OsAccount {
    OsAccount() = default;
    OsAccount(int32_t id, bool isActive, bool isForeground, bool isVerified)
        : localId(id), active(isActive), foreground(isForeground), verified(isVerified)
    {
    }

    int32_t localId = 100;
    bool active = true;
    bool foreground = false;
    bool verified = true;
};

namespace internal {
struct DeviceState;
}

class KAVO_HOST_EXPORT Device {
public:
    static constexpr int32_t ACCOUNT_SERVICE = 200;
    static constexpr int32_t BUNDLE_SERVICE = 401;
    static constexpr int32_t APP_SERVICE = 501;
    static constexpr int32_t TIME_SERVICE = 3702;

    Device();
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    // State. May be changed while active; the services see each change at once.
    void InstallBundle(const InstalledBundle& bundle);
    void UninstallBundle(const std::string& name);
    void StartProcess(const RunningProcess& process);
    void StopProcess(int32_t pid);
    void AddAccount(const OsAccount& account);
    // The uid text of the logged-in distributed account; "kavoAnonymousUid" when nobody is.
    void SetDistributedAccount(const std::string& uid);
    // The process runs as this bundle and uid while the device is active (context and own uid).
    void SetProcessIdentity(const std::string& bundleName, int32_t uid);
    // The current thread serves an inter-process call of `uid` (IPCSkeleton::GetCallingUid);
    // other threads are unaffected. Deactivation ends it on the deactivating thread.
    void SetCallingUid(int32_t uid);
    // The uid of a bundle's clone under an account; -1 when it is not installed there.
    int32_t UidOf(const std::string& bundleName, int32_t userId, int32_t appIndex = 0) const;

    // Registration.
    void Activate();
    void Deactivate();
    bool IsActive() const { return active_; }

    // Faults. `operation` is the interface's method name ("GetBundleInfoV9"). A boolean
    // operation answers false, a timer creation 0, for any code set.
    void SetReturnCode(int32_t serviceId, const std::string& operation, int32_t code, bool once = true);
    void ClearReturnCodes();
    // An absent service is not registered (and is removed at once when the device is active).
    void SetServiceAbsent(int32_t serviceId, bool absent = true);
    // Removes the service now and registers it `delay` later on another thread. Before
    // activation the delay runs from Activate().
    void StartServiceAfter(int32_t serviceId, std::chrono::milliseconds delay);

    // The device's time service (timers fire on its thread).
    MiscServices::TimeService& GetTimeService();

private:
    void Register(int32_t serviceId);
    void RegisterLater(int32_t serviceId, std::chrono::milliseconds delay);
    void StopDelayedStarts();

    std::shared_ptr<internal::DeviceState> state_;
    sptr<MiscServices::TimeService> timeService_;
    std::vector<std::pair<int32_t, sptr<IRemoteObject>>> services_;
    bool active_ = false;
    std::set<int32_t> absent_;
    std::vector<std::pair<int32_t, std::chrono::milliseconds>> pendingStarts_;
    std::string processBundle_;
    int32_t processUid_ = -1;

    std::mutex delayMutex_;
    std::condition_variable delayCancelled_;
    bool cancelDelays_ = false;
    std::vector<std::thread> delayThreads_;
};

}  // namespace Kavo::Host

#endif  // KAVO_HOST_DEVICE_DEVICE_H
