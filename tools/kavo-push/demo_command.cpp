// `kavo-push demo`: the push service's typical remote-notification request, end to end, on a
// simulated device with the application's extension running as a real child process.
#include <cstdlib>
#include <iostream>

#include "cli_io.h"
#include "command.h"
#include "demo/demo_device.h"
#include "demo/demo_service.h"
#include "demo/demo_trace.h"
#include "records/record_json.h"

namespace KavoTool {

namespace {

void ListScenarios()
{
    for (const auto& scenario : DemoScenarios()) {
        std::string name = scenario.name;
        std::cout << name << std::string(name.size() < 22 ? 22 - name.size() : 1, ' ') << scenario.summary << "\n";
    }
}

int RunDemo(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{"--json", "--list-scenarios"}, {"--scenario"}}, a, error)) {
        return UsageError("demo", error);
    }
    if (!a.positional.empty()) {
        return UsageError("demo", "unexpected argument '" + a.positional[0] + "'");
    }
    if (a.Has("--list-scenarios")) {
        ListScenarios();
        return EXIT_OK;
    }
    const DemoScenario* scenario = FindDemoScenario(a.Value("--scenario", "default"));
    if (scenario == nullptr) {
        return UsageError("demo", "unknown scenario '" + a.Value("--scenario") + "' (see --list-scenarios)");
    }
    // The log lines are shown as a release device writes them, once, in the trace.
    unsetenv("KAVO_LOG_PRIVATE");
    setenv("KAVO_LOG_LEVEL", "fatal", 0);
    DemoTrace trace(scenario->name);
    RunTypicalRequest(*scenario, trace);
    WriteStdout(a.Has("--json") ? JsonText(trace.ToJson()) : trace.Text());
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("demo", "run the typical remote-notification request end to end",
                      "usage: kavo-push demo [--scenario NAME] [--json]\n"
                      "       kavo-push demo --list-scenarios\n\n"
                      "Runs the push service's typical request on a simulated device: a mail\n"
                      "application with a remote-notification extension asks for a notification.\n"
                      "The service reads the RemoteNotificationRequest, establishes the caller's\n"
                      "account and identity, validates the request, checks the extension and its\n"
                      "process, records the start event and starts the extension as a real child\n"
                      "process (`kavo-push extension`) over a socket pair. It sends the request\n"
                      "parcel, reads the RemoteNotificationResult parcel that comes back, validates\n"
                      "the content and its overlay icon (an oversized icon is removed and the rest\n"
                      "is still delivered) and returns the result.\n\n"
                      "Prints each step with its outcome and the library's log lines (masked as on a\n"
                      "release device, whatever KAVO_LOG_PRIVATE says), the two processes' pids, the\n"
                      "bytes that crossed (hex, long ones abbreviated), the system events, and ends\n"
                      "with the public code, its message and the result as JSON, its long strings\n"
                      "abbreviated too. --json prints the whole trace as one JSON document, with\n"
                      "every byte. --scenario NAME runs a failure scenario instead; --list-scenarios\n"
                      "names them.\n\n"
                      "Exit status: 0 when the demo ran, whatever code the request ends with (a\n"
                      "scenario's public error code is its documented outcome); 2 on bad usage.\n",
                      RunDemo);

}  // namespace KavoTool
