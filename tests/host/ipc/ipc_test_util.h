// Helpers of the channel suites: raw frames written and read without the library (so the suites
// check its wire form instead of trusting it), forked peers, and counts of the process's open
// descriptors and threads. Each helper is for one thread at a time.
#ifndef KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H
#define KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace IpcTest {

using Bytes = std::vector<uint8_t>;

// An abstract socket name of this process, so parallel runs never meet.
inline std::string SocketName(const char* name)
{
    return "@kavo-ipc-" + std::to_string(getpid()) + "-" + name;
}

// Length word (which need not match), then `head` (a reply's status word), then the bytes.
inline Bytes Frame(uint32_t lengthWord, const Bytes& bytes, const Bytes& head = {})
{
    Bytes frame{uint8_t(lengthWord), uint8_t(lengthWord >> 8), uint8_t(lengthWord >> 16), uint8_t(lengthWord >> 24)};
    frame.insert(frame.end(), head.begin(), head.end());
    frame.insert(frame.end(), bytes.begin(), bytes.end());
    return frame;
}

inline Bytes RequestFrame(const Bytes& bytes)
{
    return Frame(static_cast<uint32_t>(bytes.size()), bytes);
}

inline Bytes ReplyFrame(uint32_t status, const Bytes& bytes)
{
    return Frame(static_cast<uint32_t>(4 + bytes.size()), bytes, Frame(status, {}));
}

inline bool SendBytes(int fd, const Bytes& bytes)
{
    return bytes.empty() || send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

// Exactly `size` bytes (from a socket or a pipe) within `timeoutMs`; false on end, error or timeout.
inline bool RecvExact(int fd, void* out, size_t size, int timeoutMs)
{
    for (size_t done = 0; done < size;) {
        pollfd entry{fd, POLLIN, 0};
        ssize_t n = poll(&entry, 1, timeoutMs) > 0 ? read(fd, static_cast<uint8_t*>(out) + done, size - done) : -1;
        if (n <= 0) {
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

struct Answer {
    bool framed = false;  // a whole reply frame with its status word arrived
    uint32_t status = 0;
    Bytes data;  // the bytes after the status word
};

inline Answer ReadAnswer(int fd, int timeoutMs)
{
    Answer answer;
    uint8_t w[8];
    if (RecvExact(fd, w, 8, timeoutMs)) {
        uint32_t size = w[0] | w[1] << 8 | w[2] << 16;
        answer.status = w[4] | w[5] << 8 | w[6] << 16 | static_cast<uint32_t>(w[7]) << 24;
        answer.data.resize(size >= 4 ? size - 4 : 0);
        answer.framed = size >= 4 && RecvExact(fd, answer.data.data(), answer.data.size(), timeoutMs);
    }
    return answer;
}

// True when the peer has closed: the next read reports end of stream (or a reset) in time.
inline bool PeerClosed(int fd, int timeoutMs)
{
    uint8_t byte = 0;
    pollfd entry{fd, POLLIN, 0};
    return poll(&entry, 1, timeoutMs) > 0 && recv(fd, &byte, 1, MSG_DONTWAIT) <= 0;
}

inline int ConnectRaw(const std::string& abstractName)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    abstractName.copy(address.sun_path + 1, sizeof(address.sun_path) - 2, 1);
    socklen_t length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + abstractName.size());
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && connect(fd, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        close(fd);
        fd = -1;
    }
    return fd;
}

// Entries of a /proc/self folder: "fd" for open descriptors, "task" for threads. `settle` first
// starts and joins a thread, since a sanitizer runtime starts a helper thread of its own.
inline size_t ProcCount(const char* folder, bool settle = false)
{
    if (settle) {
        std::thread([] {}).join();
    }
    auto entries = std::filesystem::directory_iterator(std::string("/proc/self/") + folder);
    return static_cast<size_t>(std::distance(entries, std::filesystem::directory_iterator()));
}

// Polls `condition` for up to two seconds (a joined thread leaves the kernel's count a moment later).
inline bool Eventually(const std::function<bool()>& condition)
{
    for (int i = 0; i < 200 && !condition(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

}  // namespace IpcTest

#endif  // KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H
