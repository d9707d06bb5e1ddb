// `kavo-push extension`: the remote-notification extension process the demo starts. It serves the
// connected socket it is given: reads each RemoteNotificationRequest with the library, builds the
// content for it and answers a RemoteNotificationResult, or misbehaves as it is told to.
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "cli_io.h"
#include "command.h"
#include "kavo/host/ipc/ipc_server.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "request/extension_process.h"
#include "request/extension_result.h"

namespace KavoTool {

namespace {

using Kavo::Push::RemoteNotificationRequest;

constexpr auto HANG_TIME = std::chrono::seconds(30);

// No core file: the crash is the scenario, not a fault to investigate.
[[noreturn]] void Crash()
{
    struct rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    std::abort();
}

bool Answer(Kavo::Parcel& request, Kavo::Parcel& reply, ExtensionBehaviour behaviour, const std::string& app)
{
    auto parsed = RemoteNotificationRequest::Unmarshalling(request);
    if (parsed == nullptr) {
        return false;
    }
    if (behaviour == ExtensionBehaviour::AS_ASKED &&
        (!ParseBehaviour(parsed->GetRemoteNotification().GetData(), behaviour) ||
         behaviour == ExtensionBehaviour::AS_ASKED)) {
        behaviour = ExtensionBehaviour::ANSWER;
    }
    switch (behaviour) {
        case ExtensionBehaviour::CRASH:
            Crash();
        case ExtensionBehaviour::HANG:
            std::this_thread::sleep_for(HANG_TIME);
            return false;
        case ExtensionBehaviour::GARBAGE: {
            static const char text[] = "this is not a remote notification result";
            return reply.WriteBuffer(text, sizeof(text) - 1);
        }
        default:
            return RenderResult(*parsed, behaviour, app).Marshalling(reply);
    }
}

int RunExtension(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{}, {"--fd", "--behaviour", "--app"}}, a, error)) {
        return UsageError("extension", error);
    }
    int32_t fd = -1;
    ExtensionBehaviour behaviour = ExtensionBehaviour::ANSWER;
    if (!a.positional.empty() || !ParseInt32(a.Value("--fd"), fd) || fd < 0 ||
        !ParseBehaviour(a.Value("--behaviour", "answer"), behaviour)) {
        return UsageError("extension", "expected --fd N and optionally --behaviour NAME");
    }
    Kavo::IpcServer server([behaviour, app = a.Value("--app")](Kavo::Parcel& request, Kavo::Parcel& reply) {
        return Answer(request, reply, behaviour, app);
    });
    if (!server.Serve(fd)) {
        return Failed("extension", "descriptor " + std::to_string(fd) + " is not a connected socket");
    }
    server.WaitUntilIdle();
    server.Stop();
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("extension", "the remote-notification extension process the demo and the service start",
                      "usage: kavo-push extension --fd N [--behaviour NAME] [--app BUNDLE]\n\n"
                      "Serves the connected socket N (one end of the demo's socket pair): reads each\n"
                      "RemoteNotificationRequest, builds the notification content for it and answers\n"
                      "a RemoteNotificationResult whose parameters name this process's pid and the\n"
                      "caller's uid as the kernel reports it. NAME makes it misbehave: answer (the\n"
                      "default), crash, hang, garbage, big-icon or long-text; as-asked takes the name\n"
                      "from each request's data. With --app the result's parameters also carry\n"
                      "`app` (BUNDLE) and `requestId` (the request's notification id). Ends when the\n"
                      "other side closes the socket. `kavo-push demo` and `kavo-push serve` start it;\n"
                      "it is rarely run by hand.\n"
                      "Exit status: 0 when the socket was served; 1 when N is not a connected socket;\n"
                      "2 on bad usage.\n",
                      RunExtension);

}  // namespace KavoTool
