// The system ability manager: the registry of platform services by numeric id, and its client
// singleton. Registration, removal, the manager's availability and the status listeners make
// the control surface through which a device, a test or the demo shapes the platform.
// Every operation is thread-safe; listeners run on the thread that changed the registry.
//
//   auto samgr = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
//   sptr<IRemoteObject> remote = samgr == nullptr ? nullptr : samgr->GetSystemAbility(401);
#ifndef KAVO_HOST_SAMGR_SYSTEM_ABILITY_MANAGER_H
#define KAVO_HOST_SAMGR_SYSTEM_ABILITY_MANAGER_H

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/iremote_object.h"
#include "kavo/host/ipc/ref_base.h"

namespace Kavo {

// Ids of the standard services.
constexpr int32_t ACCOUNT_SERVICE_ABILITY_ID = 200;
constexpr int32_t BUNDLE_SERVICE_ABILITY_ID = 401;
constexpr int32_t APP_SERVICE_ABILITY_ID = 501;
constexpr int32_t TIME_SERVICE_ABILITY_ID = 3702;

class KAVO_HOST_EXPORT ISystemAbilityManager : public virtual RefBase {
public:
    ~ISystemAbilityManager() override = default;
    // The registered remote object of service `id`, or null.
    virtual sptr<IRemoteObject> GetSystemAbility(int32_t id) = 0;
    // 0 on success; -1 for a null object.
    virtual int32_t AddSystemAbility(int32_t id, const sptr<IRemoteObject>& remote) = 0;
    // 0 when a service was removed; -1 when none was registered.
    virtual int32_t RemoveSystemAbility(int32_t id) = 0;
};

class KAVO_HOST_EXPORT SystemAbilityManagerClient {
public:
    // Called with (id, true) after a service is added and (id, false) after it is removed.
    using StatusListener = std::function<void(int32_t id, bool added)>;

    static SystemAbilityManagerClient& GetInstance();

    // Null while the manager is unavailable.
    sptr<ISystemAbilityManager> GetSystemAbilityManager();

    // Control surface. The registry keeps working while the manager is unavailable.
    int32_t AddSystemAbility(int32_t id, const sptr<IRemoteObject>& remote);
    int32_t RemoveSystemAbility(int32_t id);
    void SetManagerAvailable(bool available);
    // Returns a handle for RemoveStatusListener.
    int AddStatusListener(StatusListener listener);
    void RemoveStatusListener(int handle);

private:
    SystemAbilityManagerClient();
    void Notify(int32_t id, bool added);

    sptr<ISystemAbilityManager> registry_;
    std::mutex mutex_;
    bool available_ = true;
    int nextHandle_ = 1;
    std::map<int, StatusListener> listeners_;
};

}  // namespace Kavo

#endif  // KAVO_HOST_SAMGR_SYSTEM_ABILITY_MANAGER_H
