#include "kavo/host/ipc/ipc_server.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "kavo/host/ipc/internal/ipc_frame.h"
#include "kavo/host/ipc/ipc_skeleton.h"

namespace Kavo {

namespace {

constexpr int LISTEN_BACKLOG = 64;

// The uid the kernel recorded for the process at the other end when the socket was connected.
bool PeerUid(int fd, int32_t& uid)
{
    ucred credentials{};
    socklen_t length = sizeof(credentials);
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0 || length != sizeof(credentials)) {
        return false;
    }
    uid = static_cast<int32_t>(credentials.uid);
    return true;
}

void CloseFd(int& fd)
{
    if (fd >= 0) {
        close(fd);
        fd = -1;
    }
}

}  // namespace

struct IpcServer::Connection {
    int fd = -1;
    int32_t uid = -1;
    bool done = false;
    std::vector<uint8_t> frame;
    std::thread thread;
};

IpcServer::IpcServer(Handler handler, IpcServerOptions options) : handler_(std::move(handler)), options_(options) {}

IpcServer::~IpcServer()
{
    Stop();
}

bool IpcServer::StartSupervisorLocked()
{
    if (supervisor_.joinable()) {
        return true;
    }
    wakeFd_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeFd_ < 0) {
        return false;
    }
    try {
        supervisor_ = std::thread([this] { Supervise(); });
    } catch (...) {
        CloseFd(wakeFd_);
        return false;
    }
    return true;
}

bool IpcServer::Listen(const std::string& path)
{
    sockaddr_un address{};
    socklen_t length = 0;
    if (!internal::MakeSocketAddress(path, address, length)) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    if (stopping_ || listenFd_ >= 0) {
        return false;
    }
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0) {
        return false;
    }
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        close(fd);
        return false;
    }
    bool bound = path[0] != '@';
    if (listen(fd, LISTEN_BACKLOG) != 0 || !StartSupervisorLocked()) {
        close(fd);
        if (bound) {
            unlink(path.c_str());
        }
        return false;
    }
    listenFd_ = fd;
    boundPath_ = bound ? path : std::string();
    Wake();
    return true;
}

bool IpcServer::Serve(int fd)
{
    int32_t uid = -1;
    if (fd < 0 || !PeerUid(fd, uid)) {
        CloseFd(fd);
        return false;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    size_t live = static_cast<size_t>(std::count_if(connections_.begin(), connections_.end(),
                                                    [](const std::unique_ptr<Connection>& c) { return !c->done; }));
    if (stopping_ || live >= options_.maxConnections || !StartSupervisorLocked()) {
        close(fd);
        return false;
    }
    auto connection = std::make_unique<Connection>();
    connection->fd = fd;
    connection->uid = uid;
    Connection& ref = *connection;
    try {
        ref.thread = std::thread([this, &ref] { RunConnection(ref); });
    } catch (...) {
        close(fd);
        return false;
    }
    connections_.push_back(std::move(connection));
    return true;
}

void IpcServer::Wake()
{
    if (wakeFd_ >= 0) {
        uint64_t one = 1;
        (void)!write(wakeFd_, &one, sizeof(one));
    }
}

void IpcServer::Supervise()
{
    while (true) {
        int listenFd = -1;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            if (stopping_ && connections_.empty()) {
                return;
            }
            listenFd = stopping_ ? -1 : listenFd_;
        }
        pollfd entries[2] = {{wakeFd_, POLLIN, 0}, {listenFd, POLLIN, 0}};
        if (poll(entries, listenFd >= 0 ? 2 : 1, -1) < 0) {
            continue;  // EINTR: look again
        }
        if ((entries[0].revents & POLLIN) != 0) {
            uint64_t count = 0;
            (void)!read(wakeFd_, &count, sizeof(count));
        }
        ReapFinished();
        if (listenFd >= 0 && (entries[1].revents & POLLIN) != 0) {
            AcceptOne();
        }
    }
}

void IpcServer::AcceptOne()
{
    int fd = -1;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (stopping_ || listenFd_ < 0) {
            return;
        }
        fd = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
    }
    if (fd >= 0) {
        Serve(fd);
    }
}

void IpcServer::ReapFinished()
{
    std::vector<Connection*> finished;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& connection : connections_) {
            if (connection->done) {
                finished.push_back(connection.get());
            }
        }
    }
    if (finished.empty()) {
        return;
    }
    for (Connection* connection : finished) {
        connection->thread.join();
    }
    std::lock_guard<std::mutex> lock(mutex_);
    // Only the joined ones: another connection may have finished since they were collected.
    connections_.remove_if([&finished](const std::unique_ptr<Connection>& connection) {
        return std::find(finished.begin(), finished.end(), connection.get()) != finished.end();
    });
    if (connections_.empty()) {
        idle_.notify_all();
    }
}

void IpcServer::RunConnection(Connection& connection)
{
    IPCSkeleton::SetCallingUid(connection.uid);
    while (ServeTransaction(connection)) {
    }
    IPCSkeleton::ResetCallingUid();
    {
        std::lock_guard<std::mutex> lock(mutex_);
        CloseFd(connection.fd);
        connection.done = true;
    }
    Wake();
}

bool IpcServer::ServeTransaction(Connection& connection)
{
    // An idle connection waits without a deadline; Stop() wakes it by shutting the read side.
    if (internal::WaitReadable(connection.fd, internal::Deadline()) != IpcResult::OK) {
        return false;
    }
    internal::Deadline until(options_.deadline);
    IpcResult read = internal::ReadFrame(connection.fd, options_.maxFrameSize, until, connection.frame);
    if (read == IpcResult::PEER_GONE) {
        return false;  // the peer left between transactions
    }
    if (read != IpcResult::OK) {
        Count(read);
        internal::SendRefusal(connection.fd, read);
        return false;
    }
    Parcel request;
    request.SetMaxCapacity(options_.maxFrameSize);
    request.ParseFrom(connection.frame.data(), connection.frame.size());
    Parcel reply;
    reply.SetMaxCapacity(options_.maxFrameSize);
    bool accepted = RunHandler(request, reply);
    if (until.Passed()) {
        Count(IpcResult::DEADLINE_PASSED);
        internal::SendRefusal(connection.fd, IpcResult::DEADLINE_PASSED);
        return false;
    }
    IpcResult status = accepted ? IpcResult::OK : IpcResult::REFUSED;
    IpcResult sent = accepted ? internal::SendReply(connection.fd, status, reply.GetData(), reply.GetDataSize(), until)
                              : internal::SendReply(connection.fd, status, nullptr, 0, until);
    Count(sent == IpcResult::OK ? status : sent);
    return sent == IpcResult::OK;
}

bool IpcServer::RunHandler(Parcel& request, Parcel& reply)
{
    if (!handler_) {
        return false;
    }
    try {
        return handler_(request, reply);
    } catch (...) {
        return false;
    }
}

void IpcServer::Count(IpcResult result)
{
    size_t index = static_cast<size_t>(result);
    if (index < counts_.size()) {
        counts_[index].fetch_add(1, std::memory_order_relaxed);
    }
}

uint64_t IpcServer::GetCount(IpcResult result) const
{
    size_t index = static_cast<size_t>(result);
    return index < counts_.size() ? counts_[index].load(std::memory_order_relaxed) : 0;
}

size_t IpcServer::GetConnectionCount() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return connections_.size();
}

void IpcServer::WaitUntilIdle()
{
    std::unique_lock<std::mutex> lock(mutex_);
    idle_.wait(lock, [this] { return connections_.empty(); });
}

void IpcServer::Stop()
{
    std::lock_guard<std::mutex> stopLock(stopMutex_);
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
        // Shutting the read side ends every wait for a request; a reply being written still goes out.
        for (const auto& connection : connections_) {
            if (connection->fd >= 0) {
                shutdown(connection->fd, SHUT_RD);
            }
        }
        Wake();
    }
    if (supervisor_.joinable()) {
        supervisor_.join();
    }
    std::lock_guard<std::mutex> lock(mutex_);
    CloseFd(listenFd_);
    if (!boundPath_.empty()) {
        unlink(boundPath_.c_str());
        boundPath_.clear();
    }
    CloseFd(wakeFd_);
}

}  // namespace Kavo
