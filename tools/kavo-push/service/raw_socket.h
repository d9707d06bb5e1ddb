// A plain stream socket to the service, for what the channel's client does not do: learning who
// listens and behaving as a hostile peer would. Stateless; any thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_RAW_SOCKET_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_RAW_SOCKET_H

#include <sys/types.h>

#include <string>

namespace KavoTool {

// A connected socket (close-on-exec) to `path` ('@' first: abstract); -1 when nobody listens.
int ConnectUnix(const std::string& path);
// The pid the kernel recorded for the listening end; -1 when unknown.
pid_t PeerPid(int fd);
// Writes all bytes; false when the peer went away.
bool WriteAll(int fd, const void* data, size_t size);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_RAW_SOCKET_H
