#include "kavo/host/samgr/system_ability_manager.h"

#include <vector>

namespace Kavo {

namespace {

// The platform's own registry.
class Registry : public ISystemAbilityManager {
public:
    sptr<IRemoteObject> GetSystemAbility(int32_t id) override
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = services_.find(id);
        return it == services_.end() ? nullptr : it->second;
    }

    int32_t AddSystemAbility(int32_t id, const sptr<IRemoteObject>& remote) override
    {
        if (remote == nullptr) {
            return -1;
        }
        std::lock_guard<std::mutex> lock(mutex_);
        services_[id] = remote;
        return 0;
    }

    int32_t RemoveSystemAbility(int32_t id) override
    {
        sptr<IRemoteObject> removed;  // released after the lock
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = services_.find(id);
        if (it == services_.end()) {
            return -1;
        }
        removed = it->second;
        services_.erase(it);
        return 0;
    }

private:
    std::mutex mutex_;
    std::map<int32_t, sptr<IRemoteObject>> services_;
};

}  // namespace

SystemAbilityManagerClient::SystemAbilityManagerClient() : registry_(MakeSptr<Registry>()) {}

SystemAbilityManagerClient& SystemAbilityManagerClient::GetInstance()
{
    static SystemAbilityManagerClient* client = new SystemAbilityManagerClient();  // lives to exit
    return *client;
}

sptr<ISystemAbilityManager> SystemAbilityManagerClient::GetSystemAbilityManager()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return available_ ? registry_ : nullptr;
}

int32_t SystemAbilityManagerClient::AddSystemAbility(int32_t id, const sptr<IRemoteObject>& remote)
{
    int32_t ret = registry_->AddSystemAbility(id, remote);
    if (ret == 0) {
        Notify(id, true);
    }
    return ret;
}

int32_t SystemAbilityManagerClient::RemoveSystemAbility(int32_t id)
{
    int32_t ret = registry_->RemoveSystemAbility(id);
    if (ret == 0) {
        Notify(id, false);
    }
    return ret;
}

void SystemAbilityManagerClient::SetManagerAvailable(bool available)
{
    std::lock_guard<std::mutex> lock(mutex_);
    available_ = available;
}

int SystemAbilityManagerClient::AddStatusListener(StatusListener listener)
{
    std::lock_guard<std::mutex> lock(mutex_);
    int handle = nextHandle_++;
    listeners_[handle] = std::move(listener);
    return handle;
}

void SystemAbilityManagerClient::RemoveStatusListener(int handle)
{
    std::lock_guard<std::mutex> lock(mutex_);
    listeners_.erase(handle);
}

void SystemAbilityManagerClient::Notify(int32_t id, bool added)
{
    std::vector<StatusListener> listeners;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& entry : listeners_) {
            listeners.push_back(entry.second);
        }
    }
    for (const auto& listener : listeners) {
        listener(id, added);
    }
}

}  // namespace Kavo
