// The state a simulated device shares with the services it registers, and the lookups they
// share. Every member is guarded by `mutex`; helpers marked Locked expect it held.
#ifndef KAVO_HOST_DEVICE_INTERNAL_DEVICE_STATE_H
#define KAVO_HOST_DEVICE_INTERNAL_DEVICE_STATE_H

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kavo/host/device/device.h"

namespace Kavo::Host::internal {

constexpr int32_t UID_RANGE = 200000;

struct Fault {
    int32_t code = 0;
    bool once = true;
};

struct DeviceState {
    std::mutex mutex;
    std::vector<InstalledBundle> bundles;
    std::vector<RunningProcess> processes;
    std::vector<OsAccount> accounts;
    std::string distributedUid = "kavoAnonymousUid";
    int32_t processUid = -1;
    std::map<std::pair<int32_t, std::string>, Fault> faults;

    // The code set for this operation, consumed when it was set once.
    std::optional<int32_t> TakeFault(int32_t serviceId, const std::string& operation);

    const InstalledBundle* FindBundleLocked(const std::string& name) const;
    const OsAccount* FindAccountLocked(int32_t localId) const;
    // Whether the bundle has this clone (0 is the main application) under this account.
    static bool HasCloneLocked(const InstalledBundle& bundle, int32_t userId, int32_t appIndex);
    static int32_t UidLocked(const InstalledBundle& bundle, int32_t userId, int32_t appIndex);
    // The bundle and app index running as `uid`, or null.
    const InstalledBundle* BundleOfUidLocked(int32_t uid, int32_t& appIndex) const;
};

}  // namespace Kavo::Host::internal

#endif  // KAVO_HOST_DEVICE_INTERNAL_DEVICE_STATE_H
