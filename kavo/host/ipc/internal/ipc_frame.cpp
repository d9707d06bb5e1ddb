#include "kavo/host/ipc/internal/ipc_frame.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

namespace Kavo {
namespace internal {

namespace {

// The payload buffer grows by at most this much per read, so a length word alone costs nothing.
constexpr size_t READ_CHUNK = 64 * 1024;

// Waits for `events`; OK when they (or an error or hang-up, which the next call reports) arrived.
IpcResult WaitFor(int fd, short events, const Deadline& deadline)
{
    while (true) {
        pollfd entry{fd, events, 0};
        int ready = poll(&entry, 1, deadline.PollTimeout());
        if (ready > 0) {
            return (entry.revents & POLLNVAL) != 0 ? IpcResult::PEER_GONE : IpcResult::OK;
        }
        if (ready == 0) {
            return IpcResult::DEADLINE_PASSED;
        }
        if (errno != EINTR) {
            return IpcResult::PEER_GONE;
        }
    }
}

// Reads exactly `size` bytes; `got` tells how many arrived before a failure.
IpcResult ReadExact(int fd, uint8_t* out, size_t size, const Deadline& deadline, size_t& got)
{
    got = 0;
    while (got < size) {
        ssize_t n = recv(fd, out + got, size - got, MSG_DONTWAIT);
        if (n > 0) {
            got += static_cast<size_t>(n);
            continue;
        }
        if (n == 0) {
            return IpcResult::PEER_GONE;
        }
        if (errno == EINTR) {
            continue;
        }
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            return IpcResult::PEER_GONE;
        }
        IpcResult waited = WaitFor(fd, POLLIN, deadline);
        if (waited != IpcResult::OK) {
            return waited;
        }
    }
    return IpcResult::OK;
}

// A stream that ends after the first byte of a frame ended inside that frame.
IpcResult InsideFrame(IpcResult result)
{
    return result == IpcResult::PEER_GONE ? IpcResult::SHORT_FRAME : result;
}

}  // namespace

void StoreWord(uint8_t* out, uint32_t value)
{
    for (size_t i = 0; i < sizeof(value); ++i) {
        out[i] = static_cast<uint8_t>(value >> (8 * i));
    }
}

uint32_t LoadWord(const uint8_t* in)
{
    uint32_t value = 0;
    for (size_t i = 0; i < sizeof(value); ++i) {
        value |= static_cast<uint32_t>(in[i]) << (8 * i);
    }
    return value;
}

int Deadline::PollTimeout() const
{
    if (!bounded_) {
        return -1;
    }
    auto left = at_ - Clock::now();
    if (left <= Clock::duration::zero()) {
        return 0;
    }
    auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return ms > INT_MAX ? INT_MAX : static_cast<int>(ms);
}

bool MakeSocketAddress(const std::string& path, sockaddr_un& address, socklen_t& length)
{
    std::memset(&address, 0, sizeof(address));
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof(address.sun_path)) {
        return false;
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    if (path[0] == '@') {
        address.sun_path[0] = '\0';  // abstract: the name is exactly these bytes, no terminator
        length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    } else {
        length = static_cast<socklen_t>(sizeof(address));
    }
    return true;
}

IpcResult SendAll(int fd, const void* first, size_t firstSize, const void* second, size_t secondSize,
                  const Deadline& deadline)
{
    iovec pieces[2] = {{const_cast<void*>(first), firstSize}, {const_cast<void*>(second), secondSize}};
    size_t index = 0;
    while (index < 2) {
        if (pieces[index].iov_len == 0) {
            ++index;
            continue;
        }
        msghdr message{};
        message.msg_iov = pieces + index;
        message.msg_iovlen = 2 - index;
        ssize_t n = sendmsg(fd, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno != EAGAIN && errno != EWOULDBLOCK) {
                return IpcResult::PEER_GONE;
            }
            IpcResult waited = WaitFor(fd, POLLOUT, deadline);
            if (waited != IpcResult::OK) {
                return waited;
            }
            continue;
        }
        size_t sent = static_cast<size_t>(n);
        while (index < 2 && sent >= pieces[index].iov_len) {
            sent -= pieces[index].iov_len;
            pieces[index].iov_len = 0;
            ++index;
        }
        if (index < 2) {
            pieces[index].iov_base = static_cast<uint8_t*>(pieces[index].iov_base) + sent;
            pieces[index].iov_len -= sent;
        }
    }
    return IpcResult::OK;
}

IpcResult WaitReadable(int fd, const Deadline& deadline)
{
    return WaitFor(fd, POLLIN, deadline);
}

IpcResult ReadFrame(int fd, size_t maxSize, const Deadline& deadline, std::vector<uint8_t>& payload)
{
    uint8_t header[FRAME_HEADER_SIZE];
    size_t got = 0;
    IpcResult result = ReadExact(fd, header, sizeof(header), deadline, got);
    if (result != IpcResult::OK) {
        return got == 0 ? result : InsideFrame(result);
    }
    size_t size = LoadWord(header);
    if (size > maxSize) {
        return IpcResult::FRAME_TOO_LARGE;
    }
    payload.clear();
    while (payload.size() < size) {
        size_t have = payload.size();
        payload.resize(have + std::min(size - have, READ_CHUNK));
        result = ReadExact(fd, payload.data() + have, payload.size() - have, deadline, got);
        if (result != IpcResult::OK) {
            payload.clear();
            return InsideFrame(result);
        }
    }
    return IpcResult::OK;
}

IpcResult SendReply(int fd, IpcResult status, const uint8_t* data, size_t size, const Deadline& deadline)
{
    uint8_t header[FRAME_HEADER_SIZE + STATUS_SIZE];
    StoreWord(header, static_cast<uint32_t>(STATUS_SIZE + size));
    StoreWord(header + FRAME_HEADER_SIZE, static_cast<uint32_t>(status));
    return SendAll(fd, header, sizeof(header), data, size, deadline);
}

void SendRefusal(int fd, IpcResult status)
{
    uint8_t frame[FRAME_HEADER_SIZE + STATUS_SIZE];
    StoreWord(frame, STATUS_SIZE);
    StoreWord(frame + FRAME_HEADER_SIZE, static_cast<uint32_t>(status));
    (void)send(fd, frame, sizeof(frame), MSG_NOSIGNAL | MSG_DONTWAIT);
}

}  // namespace internal
}  // namespace Kavo
