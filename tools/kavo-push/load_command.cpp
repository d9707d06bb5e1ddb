// `kavo-push load`: the applications of the device as client processes sending requests to the
// running push service, checking every answer, and reporting throughput, latency and the service's
// resources; with --baseline, beside what the transport alone allows.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <thread>

#include "cli_io.h"
#include "command.h"
#include "records/record_json.h"
#include "service/baseline_relay.h"
#include "service/load_report.h"
#include "service/raw_socket.h"
#include "service/service_socket.h"

namespace KavoTool {

namespace {

constexpr int32_t MOST_CLIENTS = 1024;
constexpr int32_t MOST_APPS = 1001;

bool ParsePlan(const Arguments& a, LoadPlan& plan, std::string& error)
{
    int32_t clients = 0;
    int32_t apps = 1;
    int32_t settle = 15000;
    std::string requests = a.Value("--requests");
    if (!ParseInt32(a.Value("--clients"), clients) || clients < 1 || clients > MOST_CLIENTS || requests.empty() ||
        requests.find_first_not_of("0123456789") != std::string::npos || requests.size() > 12 ||
        (a.Has("--apps") && (!ParseInt32(a.Value("--apps"), apps) || apps < 1 || apps > MOST_APPS)) ||
        (a.Has("--settle-ms") && (!ParseInt32(a.Value("--settle-ms"), settle) || settle < 0))) {
        error = "expected --clients 1.." + std::to_string(MOST_CLIENTS) + ", --requests N, --apps 1.." +
                std::to_string(MOST_APPS) + ", --settle-ms MS";
        return false;
    }
    plan.socket = a.Value("--socket", DefaultServiceSocket());
    plan.clients = clients;
    plan.requests = std::stoull(requests);
    plan.apps = apps;
    plan.chaos = a.Has("--chaos");
    plan.settle = std::chrono::milliseconds(settle);
    plan.progress = isatty(STDERR_FILENO) != 0 && !a.Has("--json");
    return (!a.Has("--faults") || ParseFaultRates(a.Value("--faults"), plan.faults, error)) &&
           (!a.Has("--hostile") || ParseHostileKinds(a.Value("--hostile"), plan.hostile, error));
}

// The baseline's phase: the same clients against a relay with echo processes and no library work.
bool RunBaseline(const LoadPlan& service, LoadPhase& phase, std::string& error)
{
    LoadPlan plan = service;
    plan.socket = "@kavo-push-baseline-" + std::to_string(getpid());
    plan.baseline = true;
    plan.faults = FaultRates();
    plan.hostile.clear();
    pid_t relay = StartBaselineRelay(plan.socket, PushApps(plan.apps - 1));
    if (relay < 0) {
        error = "cannot start the baseline's relay";
        return false;
    }
    for (int tries = 0; tries < 500; ++tries) {
        int fd = ConnectUnix(plan.socket);
        if (fd >= 0) {
            close(fd);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    bool ran = RunLoadPhase(plan, phase, error);
    kill(relay, SIGTERM);
    waitpid(relay, nullptr, 0);
    return ran;
}

int RunLoad(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args,
                        {{"--json", "--baseline", "--chaos"},
                         {"--socket", "--clients", "--requests", "--apps", "--faults", "--hostile", "--settle-ms"}},
                        a, error)) {
        return UsageError("load", error);
    }
    LoadPlan plan;
    if (!a.positional.empty() || !ParsePlan(a, plan, error)) {
        return UsageError("load", error.empty() ? "unexpected argument '" + a.positional[0] + "'" : error);
    }
    signal(SIGPIPE, SIG_IGN);
    LoadPhase baseline;
    if (a.Has("--baseline") && !RunBaseline(plan, baseline, error)) {
        return Failed("load", error);
    }
    LoadPhase phase;
    if (!RunLoadPhase(plan, phase, error)) {
        return Failed("load", error);
    }
    LoadPlan baselinePlan = plan;
    baselinePlan.baseline = true;
    if (a.Has("--json")) {
        Json::Value json;
        json["service"] = PhaseJson(plan, phase);
        if (a.Has("--baseline")) {
            json["baseline"] = PhaseJson(baselinePlan, baseline);
            json["ratio"] =
                RequestsPerSecond(baseline) > 0 ? RequestsPerSecond(phase) / RequestsPerSecond(baseline) : 0;
        }
        WriteStdout(JsonText(json));
    } else {
        std::string text = PhaseText("service", plan, phase);
        if (a.Has("--baseline")) {
            char ratio[96];
            std::snprintf(ratio, sizeof(ratio), "service / baseline: %.2fx the requests/s\n",
                          RequestsPerSecond(baseline) > 0 ? RequestsPerSecond(phase) / RequestsPerSecond(baseline) : 0);
            text = PhaseText("baseline (relay and echo processes, no library work)", baselinePlan, baseline) + text +
                   ratio;
        }
        WriteStdout(text);
    }
    return PhasePassed(plan, phase) ? EXIT_OK : EXIT_FAILED;
}

}  // namespace

KAVO_REGISTER_COMMAND("load", "drive the running service with many applications and check every answer",
                      "usage: kavo-push load [--socket PATH] --clients K --requests N [--apps A] [--faults SPEC]\n"
                      "                      [--chaos] [--hostile KINDS] [--baseline] [--settle-ms MS] [--json]\n\n"
                      "Starts K client processes spread over the first A applications of the service's device\n"
                      "(com.example.mail, com.example.app1, ...; the service needs --apps A-1 or more), each under\n"
                      "its application's uid when run as root, and sends N requests in all, one at a time per\n"
                      "client. Every request carries its own notification id, which the extension puts in its\n"
                      "result, so an answer given to the wrong request is caught.\n\n"
                      "--faults mixes in requests that make the extension crash, hang past the survival time,\n"
                      "answer garbage, or answer oversized content, e.g. crash=1%,garbage=1%,oversized=1%,hang=0.01%.\n"
                      "Each must end with its code: 1000900003 (crash), 1000900004 (hang), 1000900027 (garbage,\n"
                      "oversized); the others with 0 and their own result. --chaos says the service runs --chaos:\n"
                      "a request may then end with the code of a platform service's outage (1000900001,\n"
                      "1000900002), counted apart. --hostile runs peers that misuse the socket beside the clients:\n"
                      "garbage, oversized, half-frame, flood (more connections than the service takes), or all.\n\n"
                      "Prints requests/s, p50, p99, p99.9 and max latency with a histogram, the codes, the failed\n"
                      "checks (answers lost, refused, duplicated, given to the wrong request, with the wrong code)\n"
                      "and the service's threads, descriptors, children and memory from /proc: at the start, after\n"
                      "the first tenth of the requests (at most 100,000), and at the end, once they have come back\n"
                      "to their start values (waiting up to MS, default 15000, for idle extensions to stop).\n"
                      "On a terminal it shows its progress. --baseline first runs the same clients against a relay\n"
                      "process with one echo process per application, passing the same bytes with no library work,\n"
                      "and prints the service's requests/s as a ratio to it. --json prints one JSON document.\n"
                      "Exit status: 0 when every check passed; 1 when one failed or no service listens; 2 on bad\n"
                      "usage.\n",
                      RunLoad);

}  // namespace KavoTool
