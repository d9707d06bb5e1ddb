#include "demo_extension_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <thread>
#include <vector>

namespace KavoTool {

namespace {

constexpr auto WAIT_STEP = std::chrono::milliseconds(10);

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

}  // namespace

ExtensionProcess::~ExtensionProcess()
{
    if (pid_ > 0) {
        Finish(std::chrono::milliseconds(0));
    }
}

bool ExtensionProcess::Start(ExtensionBehaviour behaviour, std::string& command)
{
    int serviceEnd = -1;
    int extensionEnd = -1;
    if (!Kavo::MakeIpcSocketPair(serviceEnd, extensionEnd)) {
        return false;
    }
    std::vector<std::string> args = {
        "kavo-push", "extension", "--fd", std::to_string(extensionEnd), "--behaviour", BehaviourName(behaviour)};
    std::vector<char*> argv;
    argv.reserve(args.size() + 1);
    for (auto& arg : args) {
        argv.push_back(arg.data());
        command += (command.empty() ? "" : " ") + arg;
    }
    argv.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        // Only the child's end stays open across exec.
        fcntl(extensionEnd, F_SETFD, 0);
        execv("/proc/self/exe", argv.data());
        _exit(127);
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
