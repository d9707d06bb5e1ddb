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
#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/host/media/pixel_map.h"
#include "kavo/host/want/want_params.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "request/extension_process.h"

namespace KavoTool {

namespace {

using Kavo::Push::RemoteNotificationContent;
using Kavo::Push::RemoteNotificationRequest;
using Kavo::Push::RemoteNotificationResult;

constexpr int32_t NORMAL_ICON_SIDE = 16;     // 16 x 16 RGBA: 1 KiB
constexpr int32_t OVERSIZED_ICON_SIDE = 32;  // 32 x 32 RGBA: 4 KiB
constexpr size_t LONG_TEXT_BYTES = 9000;
constexpr auto HANG_TIME = std::chrono::seconds(30);

std::shared_ptr<Kavo::Media::PixelMap> Icon(int32_t side)
{
    return std::make_shared<Kavo::Media::PixelMap>(side, side, Kavo::Media::PixelFormat::RGBA_8888);
}

// What the application's extension renders for a push message; the parameters tell the service
// who answered: this process and the caller the kernel reported for the socket.
RemoteNotificationResult BuildResult(const RemoteNotificationRequest& request, ExtensionBehaviour behaviour,
                                     const std::string& app)
{
    RemoteNotificationContent content;
    content.SetTitle(std::make_shared<std::string>("New message"));
    std::string text = "You have mail: " + request.GetRemoteNotification().GetData();
    if (behaviour == ExtensionBehaviour::LONG_TEXT) {
        text.append(LONG_TEXT_BYTES, 'x');
    }
    content.SetText(std::make_shared<std::string>(text));
    content.SetBadgeNumber(std::make_shared<long>(1));
    content.SetOverlayIcon(Icon(behaviour == ExtensionBehaviour::BIG_ICON ? OVERSIZED_ICON_SIDE : NORMAL_ICON_SIDE));
    auto parameters = std::make_shared<Kavo::AAFwk::WantParams>();
    parameters->SetParam("extensionPid", static_cast<int32_t>(getpid()));
    parameters->SetParam("callingUid", Kavo::IPCSkeleton::GetCallingUid());
    if (!app.empty()) {
        // Which request and application this answers, so an answer given to another is caught.
        parameters->SetParam("requestId", static_cast<int64_t>(request.GetRemoteNotification().GetId()));
        parameters->SetParam("app", app);
    }
    return RemoteNotificationResult(content, parameters);
}

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
            return BuildResult(*parsed, behaviour, app).Marshalling(reply);
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
