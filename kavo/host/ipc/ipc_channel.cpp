#include "kavo/host/ipc/ipc_channel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "kavo/host/ipc/internal/ipc_frame.h"

namespace Kavo {

namespace {

using internal::Deadline;
using internal::FRAME_HEADER_SIZE;
using internal::STATUS_SIZE;

// The failures a server names in its last frame before it closes a connection.
bool IsClosingStatus(uint32_t status)
{
    switch (static_cast<IpcResult>(status)) {
        case IpcResult::PEER_GONE:
        case IpcResult::DEADLINE_PASSED:
        case IpcResult::FRAME_TOO_LARGE:
        case IpcResult::SHORT_FRAME:
            return true;
        default:
            return false;
    }
}

// After a write found the server gone, the reason it may have sent just before closing.
IpcResult PendingRefusal(int fd)
{
    std::vector<uint8_t> frame;
    Deadline now(std::chrono::milliseconds(0));
    if (internal::ReadFrame(fd, STATUS_SIZE, now, frame) == IpcResult::OK && frame.size() == STATUS_SIZE) {
        uint32_t status = internal::LoadWord(frame.data());
        if (IsClosingStatus(status)) {
            return static_cast<IpcResult>(status);
        }
    }
    return IpcResult::PEER_GONE;
}

}  // namespace

const char* IpcResultName(IpcResult result)
{
    switch (result) {
        case IpcResult::OK:
            return "OK";
        case IpcResult::REFUSED:
            return "REFUSED";
        case IpcResult::PEER_GONE:
            return "PEER_GONE";
        case IpcResult::DEADLINE_PASSED:
            return "DEADLINE_PASSED";
        case IpcResult::FRAME_TOO_LARGE:
            return "FRAME_TOO_LARGE";
        case IpcResult::SHORT_FRAME:
            return "SHORT_FRAME";
        case IpcResult::BAD_FRAME:
            return "BAD_FRAME";
        case IpcResult::NOT_CONNECTED:
            return "NOT_CONNECTED";
    }
    return "UNKNOWN";
}

bool MakeIpcSocketPair(int& first, int& second)
{
    int fds[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0) {
        return false;
    }
    first = fds[0];
    second = fds[1];
    return true;
}

IpcClient::IpcClient(int fd) : fd_(fd) {}

IpcClient::IpcClient(IpcClient&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)), maxFrameSize_(other.maxFrameSize_), buffer_(std::move(other.buffer_))
{
}

IpcClient& IpcClient::operator=(IpcClient&& other) noexcept
{
    if (this != &other) {
        Close();
        fd_ = std::exchange(other.fd_, -1);
        maxFrameSize_ = other.maxFrameSize_;
        buffer_ = std::move(other.buffer_);
    }
    return *this;
}

IpcClient::~IpcClient()
{
    Close();
}

void IpcClient::Close()
{
    if (fd_ >= 0) {
        close(fd_);
        fd_ = -1;
    }
}

bool IpcClient::Connect(const std::string& path)
{
    Close();
    sockaddr_un address{};
    socklen_t length = 0;
    if (!internal::MakeSocketAddress(path, address, length)) {
        return false;
    }
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return false;
    }
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        close(fd);
        return false;
    }
    fd_ = fd;
    return true;
}

IpcResult IpcClient::Fail(IpcResult result)
{
    Close();
    return result;
}

IpcResult IpcClient::Transact(const Parcel& request, Parcel& reply, std::chrono::milliseconds deadline)
{
    if (fd_ < 0) {
        return IpcResult::NOT_CONNECTED;
    }
    size_t size = request.GetDataSize();
    if (size > maxFrameSize_ || size > UINT32_MAX) {
        return IpcResult::FRAME_TOO_LARGE;
    }
    Deadline until(deadline);
    uint8_t header[FRAME_HEADER_SIZE];
    internal::StoreWord(header, static_cast<uint32_t>(size));
    IpcResult sent = internal::SendAll(fd_, header, sizeof(header), request.GetData(), size, until);
    if (sent != IpcResult::OK) {
        return Fail(sent == IpcResult::PEER_GONE ? PendingRefusal(fd_) : sent);
    }
    size_t capacity = reply.GetMaxCapacity();
    size_t maxReply = capacity > SIZE_MAX - STATUS_SIZE ? SIZE_MAX : capacity + STATUS_SIZE;
    // The reply is rarely there yet: wait first rather than try a read that would come back empty.
    IpcResult received = internal::WaitReadable(fd_, until);
    if (received == IpcResult::OK) {
        received = internal::ReadFrame(fd_, maxReply, until, buffer_);
    }
    if (received != IpcResult::OK) {
        return Fail(received);
    }
    if (buffer_.size() < STATUS_SIZE) {
        return Fail(IpcResult::SHORT_FRAME);
    }
    uint32_t status = internal::LoadWord(buffer_.data());
    if (status == static_cast<uint32_t>(IpcResult::OK)) {
        reply.ParseFrom(buffer_.data() + STATUS_SIZE, buffer_.size() - STATUS_SIZE);
        return IpcResult::OK;
    }
    if (status == static_cast<uint32_t>(IpcResult::REFUSED)) {
        return IpcResult::REFUSED;
    }
    return Fail(IsClosingStatus(status) ? static_cast<IpcResult>(status) : IpcResult::BAD_FRAME);
}

}  // namespace Kavo
