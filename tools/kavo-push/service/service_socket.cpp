#include "service/service_socket.h"

#include <cstdlib>

namespace KavoTool {

std::string DefaultServiceSocket()
{
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    return std::string(runtime != nullptr && runtime[0] != '\0' ? runtime : "/tmp") + "/kavo-push.sock";
}

}  // namespace KavoTool
