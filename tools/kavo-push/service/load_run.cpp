#include "service/load_run.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <thread>

#include "service/load_client.h"
#include "service/raw_socket.h"

namespace KavoTool {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds TICK{50};
constexpr milliseconds PROGRESS_EVERY{250};
constexpr uint64_t EARLY_SAMPLE_MOST = 100000;

// A child process whose output comes back through a memory file.
struct Child {
    pid_t pid = -1;
    int output = -1;
};

template <typename Work>
Child Spawn(Work work)
{
    Child child;
    child.output = memfd_create("kavo-push-load", MFD_CLOEXEC);
    child.pid = fork();
    if (child.pid == 0) {
        std::string text = work();
        ssize_t written = write(child.output, text.data(), text.size());
        _exit(written == static_cast<ssize_t>(text.size()) ? 0 : 1);
    }
    return child;
}

std::string Collect(Child& child)
{
    int status = 0;
    waitpid(child.pid, &status, 0);
    std::string text;
    char buffer[4096];
    ssize_t n = 0;
    off_t at = 0;
    while ((n = pread(child.output, buffer, sizeof(buffer), at)) > 0) {
        text.append(buffer, static_cast<size_t>(n));
        at += n;
    }
    close(child.output);
    return text;
}

pid_t Listener(const std::string& socket)
{
    int fd = ConnectUnix(socket);
    pid_t pid = fd >= 0 ? PeerPid(fd) : -1;
    if (fd >= 0) {
        close(fd);
    }
    return pid;
}

// Samples until two looks a tick apart agree on threads, descriptors and children (a connection
// just closed takes the service a moment to let go), or until `target` is met, or time runs out.
bool Settle(pid_t pid, const ProcSample* target, milliseconds most, ProcSample& sample, milliseconds& took)
{
    auto start = Clock::now();
    ProcSample previous;
    SampleProcess(pid, previous);
    while (true) {
        std::this_thread::sleep_for(TICK);
        SampleProcess(pid, sample);
        bool settled = target != nullptr ? sample.SameResources(*target) : sample.SameResources(previous);
        took = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
        if (settled || took >= most) {
            return settled;
        }
        previous = sample;
    }
}

void ShowProgress(const LoadProgress& progress, uint64_t total, Clock::time_point start, bool last)
{
    double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    uint64_t done = progress.done.load();
    std::fprintf(stderr, "\r%llu/%llu requests, %.0f req/s, %llu failed checks   %s",
                 static_cast<unsigned long long>(done), static_cast<unsigned long long>(total),
                 seconds > 0 ? static_cast<double>(done) / seconds : 0.0,
                 static_cast<unsigned long long>(progress.failed.load()), last ? "\n" : "");
}

LoadClientPlan ClientPlan(const LoadPlan& plan, const std::vector<PushApp>& apps, int index)
{
    LoadClientPlan client;
    client.index = index;
    client.app = apps[static_cast<size_t>(index % plan.apps)];
    client.asApp = geteuid() == 0;
    client.requests = plan.requests / plan.clients + (static_cast<uint64_t>(index) < plan.requests % plan.clients);
    client.faults = plan.faults;
    client.chaos = plan.chaos;
    client.baseline = plan.baseline;
    client.socket = plan.socket;
    return client;
}

}  // namespace

bool RunLoadPhase(const LoadPlan& plan, LoadPhase& phase, std::string& error)
{
    ServiceWatch& watch = phase.watch;
    watch.pid = Listener(plan.socket);
    if (watch.pid < 0) {
        error = "no service listens on " + plan.socket;
        return false;
    }
    milliseconds took{0};
    Settle(watch.pid, nullptr, milliseconds(2000), watch.start, took);
    watch.earlyAt = std::min(EARLY_SAMPLE_MOST, std::max<uint64_t>(1, plan.requests / 10));
    void* shared = mmap(nullptr, sizeof(LoadProgress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        error = "no shared memory for the clients' progress";
        return false;
    }
    auto* progress = new (shared) LoadProgress();
    std::vector<PushApp> apps = PushApps(plan.apps - 1);
    auto start = Clock::now();
    std::vector<Child> clients;
    for (int i = 0; i < plan.clients; ++i) {
        LoadClientPlan client = ClientPlan(plan, apps, i);
        clients.push_back(Spawn([&client, progress] { return RunLoadClient(client, *progress).Serialise(); }));
    }
    // Hostile peers come once the clients hold their connections, as a service's regulars would.
    while (progress->connected.load() < static_cast<uint32_t>(plan.clients) &&
           Clock::now() - start < std::chrono::seconds(5)) {
        std::this_thread::sleep_for(milliseconds(1));
    }
    std::vector<Child> hostile;
    for (HostileKind kind : plan.hostile) {
        hostile.push_back(Spawn([kind, &plan, progress] { return RunHostilePeer(kind, plan.socket, *progress); }));
    }
    auto lastShown = start;
    size_t running = clients.size();
    bool earlyTaken = false;
    while (running > 0) {
        std::this_thread::sleep_for(milliseconds(5));
        if (!earlyTaken && progress->done.load() >= watch.earlyAt) {
            earlyTaken = SampleProcess(watch.pid, watch.early);
        }
        if (plan.progress && Clock::now() - lastShown >= PROGRESS_EVERY) {
            ShowProgress(*progress, plan.requests, start, false);
            lastShown = Clock::now();
        }
        running = 0;
        for (const Child& child : clients) {
            siginfo_t info{};
            running +=
                waitid(P_PID, static_cast<id_t>(child.pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == 0
                    ? 1
                    : 0;
        }
    }
    phase.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (plan.progress) {
        ShowProgress(*progress, plan.requests, start, true);
    }
    progress->stop.store(1);
    for (Child& child : clients) {
        LoadTally tally;
        if (!tally.Parse(Collect(child))) {
            tally.Problem("a client process ended without its tally");
            tally.lost += 1;
        }
        phase.tally.Merge(tally);
    }
    for (Child& child : hostile) {
        phase.hostile.push_back(Collect(child));
    }
    munmap(shared, sizeof(LoadProgress));
    watch.settled = Settle(watch.pid, &watch.start, plan.settle, watch.end, watch.settleTook);
    return true;
}

}  // namespace KavoTool
