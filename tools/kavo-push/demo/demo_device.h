// The demo's world: the scenarios `kavo-push demo` runs, the behaviours of the extension process
// it starts, and the simulated device every scenario runs on (the mail application with its
// remote-notification extension, its account and processes, the calling identity). Plain data
// and functions; the device belongs to the thread that builds it.
#ifndef KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_DEVICE_H
#define KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_DEVICE_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kavo/host/device/device.h"
#include "request/app_device.h"
#include "request/extension_process.h"

namespace KavoTool {

struct DemoScenario {
    const char* name;
    const char* summary;
    int32_t survivalTime;     // seconds; the extension's deadline
    int32_t overlayIconSize;  // KiB
    int32_t contentSize;      // KiB
    bool extensionInstalled;
    std::chrono::milliseconds accountServiceDelay;  // zero: the account service is up from the start
    ExtensionBehaviour behaviour;
};

// "default" first, then the failure scenarios in the order `--list-scenarios` prints them.
const std::vector<DemoScenario>& DemoScenarios();
const DemoScenario* FindDemoScenario(const std::string& name);

// A device set up for the scenario and activated, serving a call of the mail application on the
// current thread. Service readiness is tracked for the account service's late start.
class DemoDevice {
public:
    explicit DemoDevice(const DemoScenario& scenario);
    ~DemoDevice();
    DemoDevice(const DemoDevice&) = delete;
    DemoDevice& operator=(const DemoDevice&) = delete;

    Kavo::Host::Device& Get() { return device_; }

private:
    ServiceReadiness readiness_;
    Kavo::Host::Device device_;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_DEVICE_H
