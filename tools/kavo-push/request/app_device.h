// The applications of the simulated device that ask the push service for notifications, and the
// device set up for them: each with its package, uid, account and remote-notification extension.
// The demo holds the mail application alone; the service holds it and more. Plain data and
// functions; a device belongs to the thread that builds it.
#ifndef KAVO_TOOLS_KAVO_PUSH_REQUEST_APP_DEVICE_H
#define KAVO_TOOLS_KAVO_PUSH_REQUEST_APP_DEVICE_H

#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/device/device.h"

namespace KavoTool {

struct PushApp {
    std::string bundle;
    std::string extension;
    int32_t appId;
};

// Every application runs under this account, which is the foreground one.
constexpr int32_t PUSH_APP_USER = 100;

// The mail application first, then `extra` more ("com.example.app1", ...).
std::vector<PushApp> PushApps(int extra);
// The application of that bundle name among PushApps(any count); false when none is.
bool FindPushApp(const std::string& bundle, PushApp& app);
// The uid the application runs as on the device.
int32_t PushAppUid(const PushApp& app);
// Makes this process run as the uid (and group) given, as an application's processes do; false
// when it may not (only root may). Async-signal-safe, for a forked child.
bool BecomeUid(int32_t uid);

// Installs the application (with its extension unless told not to) and its main process, in
// the background, as `mainPid`.
void InstallPushApp(Kavo::Host::Device& device, const PushApp& app, bool withExtension, int32_t mainPid);
// Adds the account, names the push service's own process and activates the device.
void ActivateServiceDevice(Kavo::Host::Device& device);

// While it lives, the library's readiness registry follows the system ability manager's
// announcements, so a query that meets a missing service waits for it.
class ServiceReadiness {
public:
    ServiceReadiness();
    ~ServiceReadiness();
    ServiceReadiness(const ServiceReadiness&) = delete;
    ServiceReadiness& operator=(const ServiceReadiness&) = delete;

private:
    int listener_ = 0;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_REQUEST_APP_DEVICE_H
