#include "service/device_chaos.h"

#include <cmath>
#include <random>

namespace KavoTool {

namespace {

using std::chrono::milliseconds;

struct Target {
    int32_t id;
    const char* name;
};

const Target TARGETS[] = {
    {Kavo::Host::Device::ACCOUNT_SERVICE, "account service"},
    {Kavo::Host::Device::BUNDLE_SERVICE, "package manager"},
    {Kavo::Host::Device::APP_SERVICE, "application manager"},
};

constexpr milliseconds SHORTEST_GAP{50};
constexpr milliseconds LONGEST_GAP{8000};

}  // namespace

DeviceChaos::DeviceChaos(Kavo::Host::Device& device, milliseconds longest, uint32_t seed, Log log)
    : device_(device), longest_(longest), seed_(seed), log_(std::move(log))
{
}

DeviceChaos::~DeviceChaos()
{
    Stop();
}

void DeviceChaos::Start()
{
    thread_ = std::thread([this] { Run(); });
}

void DeviceChaos::Stop()
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    stopped_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

bool DeviceChaos::Wait(milliseconds span)
{
    std::unique_lock<std::mutex> lock(mutex_);
    return !stopped_.wait_for(lock, span, [this] { return stopping_; });
}

void DeviceChaos::Run()
{
    std::mt19937 random(seed_);
    // Gaps scale with the windows, so a short run with short windows meets several.
    std::uniform_int_distribution<long> gap(SHORTEST_GAP.count(),
                                            std::max(SHORTEST_GAP, std::min(LONGEST_GAP, 4 * longest_)).count());
    std::uniform_int_distribution<size_t> pick(0, std::size(TARGETS) - 1);
    // Window lengths spread evenly over the orders of magnitude from 1 ms to the longest.
    std::uniform_real_distribution<double> magnitude(0.0, std::log(static_cast<double>(longest_.count())));
    while (Wait(milliseconds(gap(random)))) {
        const Target& target = TARGETS[pick(random)];
        milliseconds window(std::max<long>(1, std::lround(std::exp(magnitude(random)))));
        ++windows_;
        log_("chaos: " + std::string(target.name) + " (" + std::to_string(target.id) + ") removed for " +
             std::to_string(window.count()) + " ms");
        device_.SetServiceAbsent(target.id, true);
        bool more = Wait(window);
        device_.SetServiceAbsent(target.id, false);
        log_("chaos: " + std::string(target.name) + " (" + std::to_string(target.id) + ") restored");
        if (!more) {
            return;
        }
    }
}

}  // namespace KavoTool
