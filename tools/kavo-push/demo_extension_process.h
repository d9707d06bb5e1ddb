// The extension's child process as the demo's service sees it: started by fork and exec of this
// very program with its end of the socket pair, and waited for (killed when it outlives the
// wait). One object per child; used by the thread that started it.
#ifndef KAVO_TOOLS_KAVO_PUSH_DEMO_EXTENSION_PROCESS_H
#define KAVO_TOOLS_KAVO_PUSH_DEMO_EXTENSION_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <string>

#include "demo_device.h"
#include "kavo/host/ipc/ipc_channel.h"

namespace KavoTool {

class ExtensionProcess {
public:
    ExtensionProcess() = default;
    ~ExtensionProcess();
    ExtensionProcess(const ExtensionProcess&) = delete;
    ExtensionProcess& operator=(const ExtensionProcess&) = delete;

    // False when no socket pair or no process could be had; `command` is the child's command line.
    bool Start(ExtensionBehaviour behaviour, std::string& command);
    pid_t Pid() const { return pid_; }
    // The service's end of the channel.
    Kavo::IpcClient& Channel() { return channel_; }
    // Closes the channel and waits for the child; one that has not ended within `grace` is
    // killed. Says how it ended ("exited with status 0", "killed by signal 6 (Aborted)").
    std::string Finish(std::chrono::milliseconds grace);

private:
    pid_t pid_ = -1;
    Kavo::IpcClient channel_;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_DEMO_EXTENSION_PROCESS_H
