// The push service as a long-lived process on the simulated device: listens on a Unix socket and
// runs each application's remote-notification request with the library, on the thread that serves
// the application's connection, where the kernel's credentials of the socket name the caller.
// Each application's extension is a process of its own (ExtensionHost). Keeps totals: requests by
// public code, latency, extension starts, crashes and kills. Start() and Stop() belong to the
// thread that owns the service; requests arrive on the server's threads.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_PUSH_SERVICE_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_PUSH_SERVICE_H

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "kavo/host/device/device.h"
#include "kavo/host/ipc/ipc_server.h"
#include "kavo/push/model/remote_notification_result.h"
#include "request/app_device.h"
#include "service/device_chaos.h"
#include "service/extension_host.h"
#include "service/latency_histogram.h"

namespace KavoTool {

struct ServiceOptions {
    std::string socket;
    int extraApps = 0;
    bool chaos = false;
    std::chrono::milliseconds chaosLongest{12000};
    uint32_t chaosSeed = 1;
    std::chrono::milliseconds extensionIdle{10000};
    size_t maxConnections = 64;
    bool runExtensionsAsApps = false;  // each extension under its application's uid (needs root)
};

class PushService {
public:
    explicit PushService(ServiceOptions options);
    ~PushService();
    PushService(const PushService&) = delete;
    PushService& operator=(const PushService&) = delete;

    // Sets up the device and listens; false with `error` saying why.
    bool Start(std::string& error);
    // Housekeeping between requests: stops extensions idle for too long.
    void StopIdleExtensions();
    // Accepts nothing new, lets the requests in flight end, stops the extensions and the chaos,
    // and removes the socket file.
    void Stop();
    // Requests by public code, latency, extensions, and this process's resources.
    std::string Totals() const;

private:
    bool Handle(Kavo::Parcel& request, Kavo::Parcel& reply);
    Kavo::Push::PushBaseRsp Serve(Kavo::Parcel& requestParcel,
                                  Kavo::sptr<Kavo::Push::RemoteNotificationResult>& result);
    ExtensionHost* HostOf(const std::string& bundle);
    void Record(int32_t code, std::chrono::steady_clock::duration took);

    const ServiceOptions options_;
    ServiceReadiness readiness_;
    Kavo::Host::Device device_;
    ExtensionCounts counts_;
    std::vector<std::unique_ptr<ExtensionHost>> hosts_;  // fixed once started
    std::unique_ptr<DeviceChaos> chaos_;
    std::unique_ptr<Kavo::IpcServer> server_;
    mutable std::mutex statsMutex_;
    std::map<int32_t, uint64_t> codes_;
    LatencyHistogram latency_;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_PUSH_SERVICE_H
