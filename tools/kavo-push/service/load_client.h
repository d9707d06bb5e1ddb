// One of load's client processes: one application sending its share of the requests over one
// connection, one at a time, each with its own notification id, and checking every answer
// against what its request must get. Runs on the calling thread of a process of its own.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_CLIENT_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_CLIENT_H

#include <atomic>
#include <cstdint>
#include <string>

#include "request/app_device.h"
#include "service/load_faults.h"
#include "service/load_tally.h"

namespace KavoTool {

// Shared by load's processes (it lives in memory mapped into all of them).
struct LoadProgress {
    std::atomic<uint64_t> done{0};
    std::atomic<uint64_t> failed{0};
    std::atomic<uint32_t> connected{0};
    std::atomic<uint32_t> stop{0};
};

struct LoadClientPlan {
    int index = 0;
    PushApp app;
    bool asApp = false;  // runs under the application's uid
    uint64_t requests = 0;
    FaultRates faults;
    bool chaos = false;     // the service runs chaos: outage codes are counted apart
    bool baseline = false;  // the answers are the relay's echo: only their arrival is checked
    std::string socket;
};

LoadTally RunLoadClient(const LoadClientPlan& plan, LoadProgress& progress);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_CLIENT_H
