// `kavo-push send`: one remote-notification request to the running push service, as one application.
#include <unistd.h>

#include <chrono>
#include <iostream>

#include "cli_io.h"
#include "command.h"
#include "kavo/host/ipc/ipc_channel.h"
#include "kavo/push/model/remote_notification_request.h"
#include "records/record_json.h"
#include "request/app_device.h"
#include "service/service_reply.h"
#include "service/service_socket.h"

namespace KavoTool {

namespace {

using Kavo::Push::RemoteNotificationInfo;
using Kavo::Push::RemoteNotificationRequest;

constexpr int32_t OVERLAY_ICON_KIB = 2;
constexpr int32_t CONTENT_KIB = 8;
// Room for the service's longest wait for a platform service on top of the survival time.
constexpr auto EXTRA_WAIT = std::chrono::seconds(30);

std::string ResultText(const Kavo::Push::RemoteNotificationResult& result)
{
    Kavo::Parcel parcel;
    Json::Value json;
    if (!result.Marshalling(parcel) || !FindRecordType("RemoteNotificationResult")->decode(parcel, json)) {
        return "(the result does not decode)\n";
    }
    return JsonText(json);
}

int RunSend(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{}, {"--socket", "--as", "--survival", "--id"}}, a, error)) {
        return UsageError("send", error);
    }
    int32_t survival = 5;
    int32_t id = 1;
    if (a.positional.size() == 1 || a.positional.size() > 2 ||
        (a.Has("--survival") && !ParseInt32(a.Value("--survival"), survival)) ||
        (a.Has("--id") && !ParseInt32(a.Value("--id"), id))) {
        return UsageError("send", "expected TYPE DATA or neither, --survival SECONDS, --id N");
    }
    if (a.Has("--as")) {
        PushApp app;
        if (!FindPushApp(a.Value("--as"), app)) {
            return UsageError("send", "no application '" + a.Value("--as") + "' (com.example.mail, com.example.appN)");
        }
        if (!BecomeUid(PushAppUid(app))) {
            return Failed("send", "cannot run as " + app.bundle + "'s uid " + std::to_string(PushAppUid(app)) +
                                      " (only root can)");
        }
    }
    std::string type = a.positional.empty() ? "mail" : a.positional[0];
    std::string data = a.positional.empty() ? "2 new messages" : a.positional[1];
    Kavo::Parcel request;
    RemoteNotificationRequest(survival, OVERLAY_ICON_KIB, CONTENT_KIB, RemoteNotificationInfo(type, data, id))
        .Marshalling(request);
    std::string socket = a.Value("--socket", DefaultServiceSocket());
    Kavo::IpcClient client;
    if (!client.Connect(socket)) {
        return Failed("send", "no service listens on " + socket);
    }
    Kavo::Parcel answer;
    auto wait = std::chrono::seconds(survival < 0 ? 0 : survival) + EXTRA_WAIT;
    Kavo::IpcResult result = client.Transact(request, answer, wait);
    ServiceReply reply;
    if (result != Kavo::IpcResult::OK) {
        return Failed("send", std::string("the service did not answer: ") + Kavo::IpcResultName(result));
    }
    if (!ReadServiceReply(answer, reply)) {
        return Failed("send", "the service's answer does not read as a code, a message and a result");
    }
    std::cout << "code: " << reply.code << "\nmessage: " << (reply.code == 0 ? "(success)" : reply.message) << "\n";
    if (reply.result != nullptr) {
        WriteStdout(ResultText(*reply.result));
    }
    return reply.code == 0 ? EXIT_OK : EXIT_FAILED;
}

}  // namespace

KAVO_REGISTER_COMMAND("send", "send one remote-notification request to the running service",
                      "usage: kavo-push send [--socket PATH] [--as APP] [--survival S] [--id N] [TYPE DATA]\n\n"
                      "Sends one RemoteNotificationRequest (survival time S seconds, default 5;\n"
                      "overlay icon limit 2 KiB, content limit 8 KiB; the notification's TYPE, DATA\n"
                      "and id N, default \"mail\", \"2 new messages\", 1) to the service listening on\n"
                      "PATH (default as for `serve`) and prints the public code, its message and the\n"
                      "RemoteNotificationResult as JSON, as `decode` does. DATA naming a behaviour\n"
                      "(crash, hang, garbage, big-icon, long-text) makes the extension misbehave.\n"
                      "The service knows the caller by its uid: as root, --as APP (com.example.mail,\n"
                      "com.example.app1, ...) sends as that application.\n"
                      "Exit status: 0 when the request succeeded; 1 when it ended with an error code\n"
                      "or the service did not answer; 2 on bad usage.\n",
                      RunSend);

}  // namespace KavoTool
