// The inter-process channel's serving side: accepts connections on a Unix socket path (or takes
// already connected sockets) and runs each connection's transactions on a thread of its own, where
// `IPCSkeleton::GetCallingUid()` answers the peer's uid as the kernel recorded it for the socket.
// All members may be called from any thread; Stop() joins every thread and closes every socket.
//
//   IpcServer server([](Parcel& request, Parcel& reply) { return reply.WriteInt32(request.ReadInt32()); });
//   server.Listen("/run/kavo/push.sock");
//   ...
//   server.Stop();
#ifndef KAVO_HOST_IPC_IPC_SERVER_H
#define KAVO_HOST_IPC_IPC_SERVER_H

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/ipc_channel.h"
#include "kavo/host/ipc/parcel.h"

namespace Kavo {

struct IpcServerOptions {
    // Time from a request's first byte until its reply is written.
    std::chrono::milliseconds deadline{5000};
    // Largest request and largest reply parcel, in bytes.
    size_t maxFrameSize = Parcel::DEFAULT_MAX_CAPACITY;
    // Connections served at once; a connection past this is closed as soon as it arrives.
    size_t maxConnections = 64;
};

class KAVO_HOST_EXPORT IpcServer {
public:
    // Fills `reply` from `request`; false declines the request (the client sees REFUSED). An
    // exception leaving the handler declines the request too.
    using Handler = std::function<bool(Parcel& request, Parcel& reply)>;

    explicit IpcServer(Handler handler, IpcServerOptions options = IpcServerOptions());
    IpcServer(const IpcServer&) = delete;
    IpcServer& operator=(const IpcServer&) = delete;
    ~IpcServer();

    // Binds and listens at `path` ('@' first names an abstract socket). One path per server;
    // false when it is taken, too long, or the server already listens or has stopped.
    bool Listen(const std::string& path);
    // Serves an already connected stream socket (for instance one end of MakeIpcSocketPair) and
    // owns it from now on. False, with the socket closed, when the kernel knows no peer for it,
    // the server is full or has stopped.
    bool Serve(int fd);
    // Blocks until no connection is left and every connection thread is joined.
    void WaitUntilIdle();
    // Closes the listening socket and every connection, waits for running handlers (whose replies
    // are still sent) and joins all threads. The server serves nothing afterwards. Not to be called
    // from a handler, which would wait for itself.
    void Stop();

    // Connections whose threads are not yet joined.
    size_t GetConnectionCount() const;
    // How many transactions ended with `result`: OK and REFUSED are answered; the others closed
    // their connection (a peer that leaves between transactions is not counted).
    uint64_t GetCount(IpcResult result) const;

private:
    struct Connection;

    bool StartSupervisorLocked();
    void Supervise();
    void AcceptOne();
    void ReapFinished();
    void Wake();
    void RunConnection(Connection& connection);
    bool ServeTransaction(Connection& connection);
    bool RunHandler(Parcel& request, Parcel& reply);
    void Count(IpcResult result);

    Handler handler_;
    IpcServerOptions options_;
    mutable std::mutex mutex_;
    std::mutex stopMutex_;
    std::condition_variable idle_;
    std::list<std::unique_ptr<Connection>> connections_;
    std::thread supervisor_;
    int listenFd_ = -1;
    int wakeFd_ = -1;
    std::string boundPath_;
    bool stopping_ = false;
    std::array<std::atomic<uint64_t>, 8> counts_{};
};

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_IPC_SERVER_H
