// The demo's world: the scenarios `kavo-push demo` runs, the behaviours of the extension process
// it starts, and the simulated device every scenario runs on (a mail application with a
// remote-notification extension, its account and processes, the calling identity). Plain data
// and functions; the device belongs to the thread that builds it.
#ifndef KAVO_TOOLS_KAVO_PUSH_DEMO_DEVICE_H
#define KAVO_TOOLS_KAVO_PUSH_DEMO_DEVICE_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kavo/host/device/device.h"

namespace KavoTool {

// How the extension process answers a request.
enum class ExtensionBehaviour {
    ANSWER,     // a regular result
    CRASH,      // aborts while serving the request
    HANG,       // never answers within the survival time
    GARBAGE,    // answers bytes that are not a result
    BIG_ICON,   // an overlay icon far over the request's limit
    LONG_TEXT,  // content over the request's limit
};

const char* BehaviourName(ExtensionBehaviour behaviour);
bool ParseBehaviour(const std::string& name, ExtensionBehaviour& behaviour);

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

// The application the demo's requests come from and its extension.
struct DemoApp {
    static constexpr const char* BUNDLE = "com.example.mail";
    static constexpr const char* EXTENSION = "MailNotificationExtension";
    static constexpr int32_t APP_ID = 10042;
    static constexpr int32_t USER = 100;
    static constexpr int32_t MAIN_PID = 3001;
};

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
    Kavo::Host::Device device_;
    int listener_ = 0;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_DEMO_DEVICE_H
