// One application's remote-notification extension as the service keeps it: a process started on
// the first request (with its START_EXTENSION event), reused for later ones, stopped after an idle
// time. Calls for the application queue behind each other, each with its own survival time from
// when its turn comes; a crash fails only the call it held, and a call past its survival time has
// the process killed. The next call starts a new one. Calls may come from any thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_EXTENSION_HOST_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_EXTENSION_HOST_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>

#include "kavo/host/device/device.h"
#include "kavo/host/ipc/parcel.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "request/app_device.h"
#include "request/extension_process.h"

namespace KavoTool {

struct ExtensionCounts {
    std::atomic<uint64_t> starts{0};
    std::atomic<uint64_t> crashes{0};
    std::atomic<uint64_t> kills{0};
    std::atomic<uint64_t> idleStops{0};
};

class ExtensionHost {
public:
    // `runAs` is the uid the process runs as (-1: the service's own).
    ExtensionHost(PushApp app, int32_t runAs, Kavo::Host::Device& device, ExtensionCounts& counts);
    ~ExtensionHost();
    ExtensionHost(const ExtensionHost&) = delete;
    ExtensionHost& operator=(const ExtensionHost&) = delete;

    const PushApp& App() const { return app_; }
    // The extension's reply to `request` in `reply`, or the public failure of the call.
    Kavo::Push::PushBaseRsp Call(const Kavo::Push::ClientUserInfo& caller, const Kavo::Parcel& request,
                                 Kavo::Parcel& reply, std::chrono::milliseconds survival);
    // Stops the process when no call has used it for `idle`; never waits behind a call.
    void StopIfIdle(std::chrono::milliseconds idle);
    // Stops the process once the call in progress, if any, has ended.
    void Stop();

private:
    using Clock = std::chrono::steady_clock;

    bool StartLocked(const Kavo::Push::ClientUserInfo& caller);
    void EndLocked(std::chrono::milliseconds grace);

    const PushApp app_;
    const int32_t runAs_;
    Kavo::Host::Device& device_;
    ExtensionCounts& counts_;
    std::mutex mutex_;
    ExtensionProcess process_;
    Clock::time_point lastUsed_;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_EXTENSION_HOST_H
