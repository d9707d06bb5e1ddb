#include "service/raw_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

namespace KavoTool {

int ConnectUnix(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof(address.sun_path)) {
        return -1;
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    if (path[0] == '@') {
        address.sun_path[0] = '\0';
    }
    auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + (path[0] == '@' ? 0 : 1));
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && connect(fd, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        close(fd);
        fd = -1;
    }
    return fd;
}

pid_t PeerPid(int fd)
{
    ucred credentials{};
    socklen_t length = sizeof(credentials);
    return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) == 0 ? credentials.pid : -1;
}

bool WriteAll(int fd, const void* data, size_t size)
{
    const auto* bytes = static_cast<const char*>(data);
    while (size > 0) {
        ssize_t n = send(fd, bytes, size, MSG_NOSIGNAL);
        if (n <= 0) {
            return false;
        }
        bytes += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

}  // namespace KavoTool
