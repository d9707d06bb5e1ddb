#include "service/baseline_relay.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <mutex>

#include "kavo/host/ipc/ipc_server.h"
#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/push/model/remote_notification_request.h"
#include "request/extension_result.h"
#include "service/service_reply.h"

namespace KavoTool {

namespace {

constexpr auto ECHO_WAIT = std::chrono::seconds(10);

// A typical answer of the service: code 0, no message, the result the extension renders.
std::string TypicalAnswer(const PushApp& app)
{
    Kavo::Push::RemoteNotificationRequest request(5, 2, 8, Kavo::Push::RemoteNotificationInfo("mail", "answer", 1));
    Kavo::Parcel parcel;
    auto result = RenderResult(request, ExtensionBehaviour::ANSWER, app.bundle);
    WriteServiceReply(parcel, Kavo::Push::PushBaseRsp(), &result);
    return std::string(reinterpret_cast<const char*>(parcel.GetData()), parcel.GetDataSize());
}

// In the echo process: answers every request with `answer` until the relay closes its end.
[[noreturn]] void RunEcho(int fd, const std::string& answer)
{
    Kavo::IpcServer server(
        [&answer](Kavo::Parcel&, Kavo::Parcel& reply) { return reply.WriteBuffer(answer.data(), answer.size()); });
    server.Serve(fd);
    server.WaitUntilIdle();
    server.Stop();
    _exit(0);
}

struct EchoChannel {
    PushApp app;
    pid_t pid = -1;
    std::mutex mutex;
    Kavo::IpcClient channel;
};

[[noreturn]] void RunRelay(const std::string& socket, const std::vector<PushApp>& apps)
{
    std::vector<std::unique_ptr<EchoChannel>> echoes;
    for (const PushApp& app : apps) {
        auto echo = std::make_unique<EchoChannel>();
        echo->app = app;
        int relayEnd = -1;
        int echoEnd = -1;
        if (!Kavo::MakeIpcSocketPair(relayEnd, echoEnd)) {
            _exit(1);
        }
        std::string answer = TypicalAnswer(app);
        echo->pid = fork();
        if (echo->pid == 0) {
            close(relayEnd);
            for (auto& earlier : echoes) {
                earlier->channel.Close();
            }
            RunEcho(echoEnd, answer);
        }
        close(echoEnd);
        echo->channel = Kavo::IpcClient(relayEnd);
        echoes.push_back(std::move(echo));
    }
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stop, nullptr);
    // The caller's application by the uid the kernel reports; the first when none matches.
    Kavo::IpcServer relay([&echoes](Kavo::Parcel& request, Kavo::Parcel& reply) {
        EchoChannel* echo = echoes.front().get();
        int32_t uid = Kavo::IPCSkeleton::GetCallingUid();
        for (auto& candidate : echoes) {
            echo = PushAppUid(candidate->app) == uid ? candidate.get() : echo;
        }
        std::lock_guard<std::mutex> lock(echo->mutex);
        Kavo::Parcel answer;
        if (echo->channel.Transact(request, answer, ECHO_WAIT) != Kavo::IpcResult::OK) {
            return false;
        }
        return reply.WriteBuffer(answer.GetData(), answer.GetDataSize());
    });
    if (!relay.Listen(socket)) {
        _exit(1);
    }
    int signal = 0;
    sigwait(&stop, &signal);
    relay.Stop();
    for (auto& echo : echoes) {
        echo->channel.Close();
        waitpid(echo->pid, nullptr, 0);
    }
    _exit(0);
}

}  // namespace

pid_t StartBaselineRelay(const std::string& socket, const std::vector<PushApp>& apps)
{
    pid_t pid = fork();
    if (pid == 0) {
        RunRelay(socket, apps);
    }
    return pid;
}

}  // namespace KavoTool
