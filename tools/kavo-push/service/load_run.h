// One phase of `kavo-push load`: K client processes spread over A applications send N requests
// to a socket (the service, or the baseline relay), while hostile peers run beside them if asked.
// Watches the service from /proc: at the start, once a tenth of the requests (at most 100,000)
// are done, and at the end once its threads, descriptors and children have settled. Runs on the
// calling thread of a process with no other threads (it forks).
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_RUN_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_RUN_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "service/hostile_peer.h"
#include "service/load_faults.h"
#include "service/load_tally.h"
#include "service/proc_sample.h"

namespace KavoTool {

struct LoadPlan {
    std::string socket;
    int clients = 1;
    uint64_t requests = 0;
    int apps = 1;
    FaultRates faults;
    bool chaos = false;
    bool baseline = false;
    std::vector<HostileKind> hostile;
    bool progress = false;  // a progress line on standard error while it runs
    std::chrono::milliseconds settle{15000};
};

struct ServiceWatch {
    pid_t pid = -1;
    ProcSample start;
    ProcSample early;  // after the first tenth of the requests, at most 100,000
    uint64_t earlyAt = 0;
    ProcSample end;
    bool settled = false;  // threads, descriptors and children came back to their start values
    std::chrono::milliseconds settleTook{0};
};

struct LoadPhase {
    double seconds = 0;
    LoadTally tally;
    std::vector<std::string> hostile;  // what each hostile peer did and saw
    ServiceWatch watch;
};

// False with `error` when no one listens at the plan's socket.
bool RunLoadPhase(const LoadPlan& plan, LoadPhase& phase, std::string& error);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_LOAD_RUN_H
