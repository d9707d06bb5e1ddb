#include "kavo/host/device/internal/device_state.h"

#include <algorithm>

namespace Kavo::Host::internal {

std::optional<int32_t> DeviceState::TakeFault(int32_t serviceId, const std::string& operation)
{
    std::lock_guard<std::mutex> lock(mutex);
    auto it = faults.find({serviceId, operation});
    if (it == faults.end()) {
        return std::nullopt;
    }
    int32_t code = it->second.code;
    if (it->second.once) {
        faults.erase(it);
    }
    return code;
}

const InstalledBundle* DeviceState::FindBundleLocked(const std::string& name) const
{
    for (const auto& bundle : bundles) {
        if (bundle.name == name) {
            return &bundle;
        }
    }
    return nullptr;
}

const OsAccount* DeviceState::FindAccountLocked(int32_t localId) const
{
    for (const auto& account : accounts) {
        if (account.localId == localId) {
            return &account;
        }
    }
    return nullptr;
}

bool DeviceState::HasCloneLocked(const InstalledBundle& bundle, int32_t userId, int32_t appIndex)
{
    const auto& users = bundle.userIds;
    if (std::find(users.begin(), users.end(), userId) == users.end()) {
        return false;
    }
    const auto& clones = bundle.cloneIndexes;
    return appIndex == 0 || std::find(clones.begin(), clones.end(), appIndex) != clones.end();
}

int32_t DeviceState::UidLocked(const InstalledBundle& bundle, int32_t userId, int32_t appIndex)
{
    if (!HasCloneLocked(bundle, userId, appIndex)) {
        return AppExecFwk::INVALID_UID;
    }
    return userId * UID_RANGE + bundle.appId + appIndex;
}

const InstalledBundle* DeviceState::BundleOfUidLocked(int32_t uid, int32_t& appIndex) const
{
    if (uid < 0) {
        return nullptr;
    }
    int32_t userId = uid / UID_RANGE;
    int32_t offset = uid % UID_RANGE;
    for (const auto& bundle : bundles) {
        int32_t index = offset - bundle.appId;
        if (index >= 0 && HasCloneLocked(bundle, userId, index)) {
            appIndex = index;
            return &bundle;
        }
    }
    return nullptr;
}

}  // namespace Kavo::Host::internal
