// `kavo-push serve`: the push service as a long-lived process on the simulated device, serving
// the applications' remote-notification requests on a Unix socket until SIGINT or SIGTERM.
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iostream>

#include "cli_io.h"
#include "command.h"
#include "service/push_service.h"
#include "service/service_socket.h"

namespace KavoTool {

namespace {

constexpr int32_t MAX_EXTRA_APPS = 1000;
constexpr long HOUSEKEEPING_NS = 250000000;  // idle extensions are looked for four times a second

bool ParseCount(const Arguments& a, const std::string& name, int32_t low, int32_t high, int32_t fallback,
                int32_t& value)
{
    value = fallback;
    return !a.Has(name) || (ParseInt32(a.Value(name), value) && value >= low && value <= high);
}

// Waits for SIGINT or SIGTERM (blocked for every thread since start), doing the housekeeping and
// printing the totals every `statsInterval` seconds on the way.
void ServeUntilStopped(PushService& service, const sigset_t& stopSignals, int32_t statsInterval)
{
    auto nextStats = std::chrono::steady_clock::now() + std::chrono::seconds(statsInterval);
    const timespec step = {0, HOUSEKEEPING_NS};
    while (true) {
        int signal = sigtimedwait(&stopSignals, nullptr, &step);
        if (signal == SIGINT || signal == SIGTERM) {
            std::cerr << "kavo-push serve: " << (signal == SIGINT ? "SIGINT" : "SIGTERM")
                      << ": stopping (finishing the requests in flight)" << std::endl;
            return;
        }
        service.StopIdleExtensions();
        if (statsInterval > 0 && std::chrono::steady_clock::now() >= nextStats) {
            std::cout << service.Totals() << std::endl;
            nextStats += std::chrono::seconds(statsInterval);
        }
    }
}

int RunServe(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args,
                        {{"--chaos"},
                         {"--socket", "--apps", "--stats-interval", "--idle-ms", "--chaos-longest-ms", "--chaos-seed",
                          "--max-connections"}},
                        a, error)) {
        return UsageError("serve", error);
    }
    ServiceOptions options;
    int32_t apps = 0, stats = 0, idle = 0, longest = 0, seed = 0, connections = 0;
    if (!a.positional.empty() || !ParseCount(a, "--apps", 0, MAX_EXTRA_APPS, 0, apps) ||
        !ParseCount(a, "--stats-interval", 0, INT32_MAX, 0, stats) ||
        !ParseCount(a, "--idle-ms", 1, INT32_MAX, 10000, idle) ||
        !ParseCount(a, "--chaos-longest-ms", 1, INT32_MAX, 12000, longest) ||
        !ParseCount(a, "--chaos-seed", 0, INT32_MAX, static_cast<int32_t>(getpid()), seed) ||
        !ParseCount(a, "--max-connections", 1, 100000, 64, connections)) {
        return UsageError("serve", "expected counts: --apps 0.." + std::to_string(MAX_EXTRA_APPS) +
                                       ", --stats-interval S, --idle-ms MS, --chaos-longest-ms MS, "
                                       "--chaos-seed N, --max-connections N");
    }
    options.socket = a.Value("--socket", DefaultServiceSocket());
    options.extraApps = apps;
    options.chaos = a.Has("--chaos");
    options.chaosLongest = std::chrono::milliseconds(longest);
    options.chaosSeed = static_cast<uint32_t>(seed);
    options.extensionIdle = std::chrono::milliseconds(idle);
    options.maxConnections = static_cast<size_t>(connections);
    options.runExtensionsAsApps = geteuid() == 0;
    // The library's own log lines stay quiet unless asked for; the service logs what it does.
    setenv("KAVO_LOG_LEVEL", "fatal", 0);
    signal(SIGPIPE, SIG_IGN);
    // Every thread started from here on leaves the stop signals to sigtimedwait.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    PushService service(options);
    if (!service.Start(error)) {
        return Failed("serve", error);
    }
    std::cerr << "kavo-push serve: listening on " << options.socket << " (pid " << getpid() << "), " << (apps + 1)
              << " applications" << (options.chaos ? ", chaos on" : "") << std::endl;
    ServeUntilStopped(service, stopSignals, stats);
    service.Stop();
    std::cout << service.Totals();
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND(
    "serve", "run the push service on a Unix socket until SIGINT or SIGTERM",
    "usage: kavo-push serve [--socket PATH] [--apps N] [--chaos] [--stats-interval S]\n"
    "                       [--idle-ms MS] [--max-connections N] [--chaos-longest-ms MS] [--chaos-seed N]\n\n"
    "Runs the push service on a simulated device holding the mail application\n"
    "(com.example.mail) and N more (com.example.app1 ...), each with its package, uid,\n"
    "account and remote-notification extension. It listens on PATH (default\n"
    "$XDG_RUNTIME_DIR/kavo-push.sock, else /tmp/kavo-push.sock; '@name' for an abstract\n"
    "socket). A request is a RemoteNotificationRequest parcel in a frame; the caller is\n"
    "the uid the kernel reports for the connection, never anything the request says.\n"
    "Each request goes through the library's steps: the foreground account, the\n"
    "caller's identity, the request's validation, the extension and its process, the\n"
    "extension call and the validation of the content it returns. The answer is the\n"
    "public code, its message and, on success, the RemoteNotificationResult.\n\n"
    "Each application's extension is a process of its own (`kavo-push extension`,\n"
    "under the application's uid when the service runs as root), started with a\n"
    "START_EXTENSION event on the application's first request, reused, and stopped\n"
    "after MS milliseconds unused (default 10000). One that crashes fails the request\n"
    "it held; one that does not answer within the request's survival time is killed.\n"
    "The next request starts it again. An application's requests queue for its\n"
    "extension; different applications never wait for each other.\n\n"
    "--chaos removes the account service, the package manager or the application\n"
    "manager at random moments for 1 ms up to MS (default 12000, longer than the\n"
    "library's retries wait) and logs each window on standard error.\n"
    "--stats-interval prints the totals every S seconds. At most N connections are\n"
    "served at once (default 64); one past that is closed as it arrives.\n\n"
    "SIGINT or SIGTERM stops it: nothing new is accepted, requests in flight end, the\n"
    "extensions stop, the socket file is removed and the totals are printed: requests\n"
    "by public code, latency, extension starts, crashes and kills, and the process's\n"
    "threads, descriptors, children and memory.\n"
    "Exit status: 0 after a stop; 1 when it cannot listen; 2 on bad usage.\n",
    RunServe);

}  // namespace KavoTool
