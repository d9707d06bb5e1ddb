// Helpers of the channel suites: raw frames written and read without the library (so the suites
// check its wire form instead of trusting it), forked peers, and counts of the process's open
// descriptors and threads. Each helper is for one thread at a time.
#ifndef KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H
#define KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
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

// Length word (which need not match), then the bytes; a reply frame puts its status word first.
inline Bytes Frame(uint32_t lengthWord, const Bytes& bytes, const Bytes& head = {})
{
    Bytes frame;
    for (int i = 0; i < 4; ++i) {
        frame.push_back(static_cast<uint8_t>(lengthWord >> (8 * i)));
    }
    frame.insert(frame.end(), head.begin(), head.end());
    frame.insert(frame.end(), bytes.begin(), bytes.end());
    return frame;
}

inline Bytes Word(uint32_t value)
{
    return Frame(value, {});
}

inline Bytes RequestFrame(const Bytes& bytes)
{
    return Frame(static_cast<uint32_t>(bytes.size()), bytes);
}

inline Bytes ReplyFrame(uint32_t status, const Bytes& bytes)
{
    return Frame(static_cast<uint32_t>(4 + bytes.size()), bytes, Word(status));
}

inline bool SendBytes(int fd, const Bytes& bytes)
{
    return bytes.empty() || send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

// Reads exactly `size` bytes (from a socket or a pipe) within `timeoutMs`; false on end of
// stream, error or timeout.
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
    uint8_t word[8];
    if (RecvExact(fd, word, 8, timeoutMs)) {
        uint32_t size = word[0] | word[1] << 8 | word[2] << 16;
        answer.status = word[4] | word[5] << 8 | word[6] << 16 | static_cast<uint32_t>(word[7]) << 24;
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

inline size_t OpenFdCount()
{
    size_t count = 0;
    DIR* dir = opendir("/proc/self/fd");
    while (dir != nullptr && readdir(dir) != nullptr) {
        ++count;
    }
    return dir != nullptr && closedir(dir) == 0 ? count : 0;
}

inline size_t ThreadCount()
{
    std::ifstream status("/proc/self/status");
    std::string key;
    size_t value = 0;
    while (status >> key && key != "Threads:") {
    }
    status >> value;
    return value;
}

// The thread count to come back to. A first thread is started and joined before counting, since
// a sanitizer runtime starts a helper thread of its own alongside the process's first thread.
inline size_t ThreadBaseline()
{
    std::thread([] {}).join();
    return ThreadCount();
}

// Polls `condition` for up to two seconds (a joined thread leaves the kernel's count a moment later).
inline bool Eventually(const std::function<bool()>& condition)
{
    for (int i = 0; i < 200 && !condition(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

// Forks a child while the test process still has one thread. The child waits for a byte on `go`,
// runs `body` with the write end of `out` for its findings, and exits; the parent keeps the rest.
struct ForkedPeer {
    explicit ForkedPeer(const std::function<void(int)>& body)
    {
        if (pipe2(go, O_CLOEXEC) == 0 && pipe2(out, O_CLOEXEC) == 0 && (pid = fork()) == 0) {
            char byte = 0;
            if (read(go[0], &byte, 1) == 1) {
                body(out[1]);
            }
            _exit(0);
        }
        close(out[1]);
    }
    ~ForkedPeer()
    {
        close(go[1]);
        close(go[0]);
        close(out[0]);
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }
    void Go() { (void)!write(go[1], "g", 1); }
    bool Read(void* findings, size_t size, int timeoutMs) { return RecvExact(out[0], findings, size, timeoutMs); }

    int go[2] = {-1, -1};
    int out[2] = {-1, -1};
    pid_t pid = -1;
};

}  // namespace IpcTest

#endif  // KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H
