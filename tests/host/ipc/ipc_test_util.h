// Helpers of the channel suites: raw frames written and read without the library (so the suites
// check its wire form instead of trusting it), socket paths in a private folder, and counts of
// the process's open descriptors and threads. Each helper is for one thread at a time.
#ifndef KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H
#define KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace IpcTest {

using Bytes = std::vector<uint8_t>;

inline void AppendWord(Bytes& out, uint32_t value)
{
    for (int i = 0; i < 4; ++i) {
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
}

// A request frame: the length word, then the bytes (the word need not match them).
inline Bytes RequestFrame(uint32_t lengthWord, const Bytes& bytes)
{
    Bytes frame;
    AppendWord(frame, lengthWord);
    frame.insert(frame.end(), bytes.begin(), bytes.end());
    return frame;
}

inline Bytes RequestFrame(const Bytes& bytes)
{
    return RequestFrame(static_cast<uint32_t>(bytes.size()), bytes);
}

// A reply frame as a server writes it: length word, status word, the parcel's bytes.
inline Bytes ReplyFrame(uint32_t status, const Bytes& bytes)
{
    Bytes frame;
    AppendWord(frame, static_cast<uint32_t>(4 + bytes.size()));
    AppendWord(frame, status);
    frame.insert(frame.end(), bytes.begin(), bytes.end());
    return frame;
}

inline bool SendBytes(int fd, const Bytes& bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n <= 0) {
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

// Reads exactly `size` bytes within `timeoutMs`; false on end of stream, error or timeout.
inline bool RecvExact(int fd, uint8_t* out, size_t size, int timeoutMs)
{
    size_t done = 0;
    while (done < size) {
        pollfd entry{fd, POLLIN, 0};
        if (poll(&entry, 1, timeoutMs) <= 0) {
            return false;
        }
        ssize_t n = recv(fd, out + done, size - done, 0);
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

// Reads one reply frame from a server (at most `maxData` bytes after the status word).
inline Answer ReadAnswer(int fd, int timeoutMs, size_t maxData = 1 << 20)
{
    Answer answer;
    uint8_t word[4];
    if (!RecvExact(fd, word, 4, timeoutMs)) {
        return answer;
    }
    uint32_t size = word[0] | (word[1] << 8) | (word[2] << 16) | (static_cast<uint32_t>(word[3]) << 24);
    if (size < 4 || size - 4 > maxData || !RecvExact(fd, word, 4, timeoutMs)) {
        return answer;
    }
    answer.status = word[0] | (word[1] << 8) | (word[2] << 16) | (static_cast<uint32_t>(word[3]) << 24);
    answer.data.resize(size - 4);
    answer.framed = answer.data.empty() || RecvExact(fd, answer.data.data(), answer.data.size(), timeoutMs);
    return answer;
}

// True when the peer has closed: the next read reports end of stream (or a reset) in time.
inline bool PeerClosed(int fd, int timeoutMs)
{
    pollfd entry{fd, POLLIN, 0};
    if (poll(&entry, 1, timeoutMs) <= 0) {
        return false;
    }
    uint8_t byte = 0;
    return recv(fd, &byte, 1, MSG_DONTWAIT) <= 0;
}

inline int ConnectTo(const std::string& path)
{
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    if (fd >= 0 && connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        close(fd);
        fd = -1;
    }
    return fd;
}

// A private folder for socket paths that any uid may reach, removed with everything in it.
class SocketDir {
public:
    SocketDir()
    {
        char pattern[] = "/tmp/kavo-ipc-XXXXXX";
        dir_ = mkdtemp(pattern) != nullptr ? pattern : "/tmp";
        chmod(dir_.c_str(), 0777);
    }
    ~SocketDir()
    {
        if (DIR* dir = opendir(dir_.c_str())) {
            while (dirent* entry = readdir(dir)) {
                if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
                    unlink(Path(entry->d_name).c_str());
                }
            }
            closedir(dir);
        }
        rmdir(dir_.c_str());
    }
    SocketDir(const SocketDir&) = delete;
    SocketDir& operator=(const SocketDir&) = delete;

    std::string Path(const std::string& name) const { return dir_ + "/" + name; }

private:
    std::string dir_;
};

inline size_t OpenFdCount()
{
    size_t count = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir) != nullptr) {
            ++count;
        }
        closedir(dir);
    }
    return count;
}

inline size_t ThreadCount()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("Threads:", 0) == 0) {
            return std::strtoul(line.c_str() + 8, nullptr, 10);
        }
    }
    return 0;
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
    for (int i = 0; i < 200; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

// A child process forked at construction, while the test process still has a single thread.
// It waits for Go(), runs `body` with a descriptor to write its findings to, and exits.
class ChildPeer {
public:
    explicit ChildPeer(const std::function<void(int)>& body)
    {
        if (pipe2(go_, O_CLOEXEC) != 0 || pipe2(out_, O_CLOEXEC) != 0) {
            return;
        }
        pid_ = fork();
        if (pid_ == 0) {
            char byte = 0;
            if (read(go_[0], &byte, 1) == 1) {
                body(out_[1]);
            }
            _exit(0);
        }
        close(go_[0]);
        close(out_[1]);
    }
    ~ChildPeer()
    {
        close(go_[1]);
        close(out_[0]);
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    ChildPeer(const ChildPeer&) = delete;
    ChildPeer& operator=(const ChildPeer&) = delete;

    void Go() { (void)!write(go_[1], "g", 1); }
    // Reads exactly `size` bytes of the child's findings; false when it exited without them.
    bool Read(void* out, size_t size, int timeoutMs)
    {
        size_t done = 0;
        while (done < size) {
            pollfd entry{out_[0], POLLIN, 0};
            ssize_t n =
                poll(&entry, 1, timeoutMs) > 0 ? read(out_[0], static_cast<char*>(out) + done, size - done) : -1;
            if (n <= 0) {
                return false;
            }
            done += static_cast<size_t>(n);
        }
        return true;
    }

private:
    int go_[2] = {-1, -1};
    int out_[2] = {-1, -1};
    pid_t pid_ = -1;
};

}  // namespace IpcTest

#endif  // KAVO_TESTS_HOST_IPC_IPC_TEST_UTIL_H
