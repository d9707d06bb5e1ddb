// Platform services that come and go while the push service serves: at random moments the account
// service, the package manager or the application manager leaves the device for a window from a
// millisecond to longer than the library's retries wait for it, then comes back. Each window is
// written to `log` as it opens and closes. One thread of its own; Stop() restores what is gone.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_DEVICE_CHAOS_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_DEVICE_CHAOS_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "kavo/host/device/device.h"

namespace KavoTool {

class DeviceChaos {
public:
    using Log = std::function<void(const std::string& line)>;

    // `device` must stay active until Stop(); no other thread changes its services meanwhile.
    DeviceChaos(Kavo::Host::Device& device, std::chrono::milliseconds longest, uint32_t seed, Log log);
    ~DeviceChaos();
    DeviceChaos(const DeviceChaos&) = delete;
    DeviceChaos& operator=(const DeviceChaos&) = delete;

    void Start();
    void Stop();
    uint64_t Windows() const { return windows_; }

private:
    void Run();
    // Sleeps for `span` unless stopped first; false when stopped.
    bool Wait(std::chrono::milliseconds span);

    Kavo::Host::Device& device_;
    const std::chrono::milliseconds longest_;
    const uint32_t seed_;
    Log log_;
    std::mutex mutex_;
    std::condition_variable stopped_;
    bool stopping_ = false;
    std::atomic<uint64_t> windows_{0};
    std::thread thread_;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_DEVICE_CHAOS_H
