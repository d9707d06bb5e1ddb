// Where the push service listens unless told otherwise. Stateless.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_SERVICE_SOCKET_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_SERVICE_SOCKET_H

#include <string>

namespace KavoTool {

// $XDG_RUNTIME_DIR/kavo-push.sock, or /tmp/kavo-push.sock without a runtime directory.
std::string DefaultServiceSocket();

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_SERVICE_SOCKET_H
