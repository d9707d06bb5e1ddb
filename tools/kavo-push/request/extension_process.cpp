#include "request/extension_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <thread>
#include <vector>

#include "request/app_device.h"

namespace KavoTool {

namespace {

constexpr auto WAIT_STEP = std::chrono::milliseconds(10);

const char* const BEHAVIOUR_NAMES[] = {"answer", "crash", "hang", "garbage", "big-icon", "long-text", "as-asked"};

std::string HowItEnded(int status)
{
    if (WIFEXITED(status)) {
        return "exited with status " + std::to_string(WEXITSTATUS(status));
    }
    if (WIFSIGNALED(status)) {
        return "killed by signal " + std::to_string(WTERMSIG(status)) + " (" + strsignal(WTERMSIG(status)) + ")";
    }
    return "ended";
}

// In the forked child: only async-signal-safe calls until exec.
[[noreturn]] void RunChild(int32_t uid, int extensionEnd, char** argv)
{
    // The service blocks its stop signals for the thread that waits for them; the child takes them.
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (uid >= 0 && !BecomeUid(uid)) {
        _exit(126);
    }
    // Only the child's end stays open across exec.
    fcntl(extensionEnd, F_SETFD, 0);
    execv("/proc/self/exe", argv);
    _exit(127);
}

}  // namespace

const char* BehaviourName(ExtensionBehaviour behaviour)
{
    return BEHAVIOUR_NAMES[static_cast<int>(behaviour)];
}

bool ParseBehaviour(const std::string& name, ExtensionBehaviour& behaviour)
{
    for (int i = 0; i < static_cast<int>(std::size(BEHAVIOUR_NAMES)); ++i) {
        if (name == BEHAVIOUR_NAMES[i]) {
            behaviour = static_cast<ExtensionBehaviour>(i);
            return true;
        }
    }
    return false;
}

ExtensionProcess::~ExtensionProcess()
{
    if (pid_ > 0) {
        Finish(std::chrono::milliseconds(0));
    }
}

bool ExtensionProcess::Start(const ExtensionLaunch& launch, std::string& command)
{
    int serviceEnd = -1;
    int extensionEnd = -1;
    if (!Kavo::MakeIpcSocketPair(serviceEnd, extensionEnd)) {
        return false;
    }
    std::vector<std::string> args = {
        "kavo-push", "extension", "--fd", std::to_string(extensionEnd), "--behaviour", BehaviourName(launch.behaviour)};
    if (!launch.app.empty()) {
        args.insert(args.end(), {"--app", launch.app});
    }
    std::vector<char*> argv;
    argv.reserve(args.size() + 1);
    for (auto& arg : args) {
        argv.push_back(arg.data());
        command += (command.empty() ? "" : " ") + arg;
    }
    argv.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        RunChild(launch.uid, extensionEnd, argv.data());
    }
    close(extensionEnd);
    if (pid_ < 0) {
        close(serviceEnd);
        return false;
    }
    channel_ = Kavo::IpcClient(serviceEnd);
    return true;
}

std::string ExtensionProcess::Finish(std::chrono::milliseconds grace)
{
    channel_.Close();
    int status = 0;
    auto giveUp = std::chrono::steady_clock::now() + grace;
    pid_t ended = waitpid(pid_, &status, WNOHANG);
    while (ended == 0 && std::chrono::steady_clock::now() < giveUp) {
        std::this_thread::sleep_for(WAIT_STEP);
        ended = waitpid(pid_, &status, WNOHANG);
    }
    if (ended == 0) {
        kill(pid_, SIGKILL);
        ended = waitpid(pid_, &status, 0);
    }
    pid_ = -1;
    return ended > 0 ? HowItEnded(status) : "could not be waited for";
}

}  // namespace KavoTool
