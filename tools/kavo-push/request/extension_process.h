// The extension's child process as the push service sees it: started by fork and exec of this
// very program (`kavo-push extension`) with its end of a socket pair, and waited for (killed when
// it outlives the wait). One object per child; used by one thread at a time.
#ifndef KAVO_TOOLS_KAVO_PUSH_REQUEST_EXTENSION_PROCESS_H
#define KAVO_TOOLS_KAVO_PUSH_REQUEST_EXTENSION_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "kavo/host/ipc/ipc_channel.h"

namespace KavoTool {

// How the extension process answers a request.
enum class ExtensionBehaviour {
    ANSWER,     // a regular result
    CRASH,      // aborts while serving the request
    HANG,       // never answers within the survival time
    GARBAGE,    // answers bytes that are not a result
    BIG_ICON,   // an overlay icon far over the request's limit
    LONG_TEXT,  // content over the request's limit
    AS_ASKED,   // as the request's data names it, one of the above (answers when it names none)
};

const char* BehaviourName(ExtensionBehaviour behaviour);
bool ParseBehaviour(const std::string& name, ExtensionBehaviour& behaviour);

struct ExtensionLaunch {
    ExtensionBehaviour behaviour = ExtensionBehaviour::ANSWER;
    std::string app;   // the application it renders for, named in its results; none when empty
    int32_t uid = -1;  // the uid (and group) it runs as; -1 keeps the service's (needs root otherwise)
};

class ExtensionProcess {
public:
    ExtensionProcess() = default;
    ~ExtensionProcess();
    ExtensionProcess(const ExtensionProcess&) = delete;
    ExtensionProcess& operator=(const ExtensionProcess&) = delete;

    // False when no socket pair or no process could be had; `command` is the child's command line.
    bool Start(const ExtensionLaunch& launch, std::string& command);
    bool Running() const { return pid_ > 0; }
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

#endif  // KAVO_TOOLS_KAVO_PUSH_REQUEST_EXTENSION_PROCESS_H
