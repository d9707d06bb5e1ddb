// The channel's fixture: a handler whose first word picks what it does, and the raw socket
// work a test does around a client or a server.
#ifndef KAVO_TESTS_HOST_IPC_CHANNEL_FIXTURE_H
#define KAVO_TESTS_HOST_IPC_CHANNEL_FIXTURE_H

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "kavo/host/ipc/ipc_channel.h"
#include "kavo/host/ipc/ipc_server.h"
#include "kavo/host/ipc/ipc_skeleton.h"

namespace KavoTest::Ipc {

using namespace std::chrono_literals;
using Bytes = std::vector<uint8_t>;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::Parcel;

constexpr uint32_t MAX = 96 * 1024;  // past the server's read chunk, so a frame takes several reads

// The first word picks what the handler does.
enum Op : int32_t { ECHO = 0x100, DECLINE = 0x200, THROW = 0x300, SLOW = 0x400, UID = 0x500 };

inline bool Handle(Parcel& request, Parcel& reply)
{
    switch (request.ReadInt32()) {
        case ECHO:
            return reply.WriteBuffer(request.GetData(), request.GetDataSize());
        case THROW:
            throw std::runtime_error("handler fault");
        case SLOW:
            std::this_thread::sleep_for(200ms);
            return reply.WriteInt32(0);
        case UID:
            return reply.WriteInt32(Kavo::IPCSkeleton::GetCallingUid());
        default:
            return false;
    }
}

struct Channel : testing::Test {
    static Bytes DataOf(const Parcel& p) { return Bytes(p.GetData(), p.GetData() + p.GetDataSize()); }
    // A little-endian word (a length word need not match), then the bytes.
    static Bytes Frame(uint32_t word, Bytes bytes)
    {
        bytes.insert(bytes.begin(), {uint8_t(word), uint8_t(word >> 8), uint8_t(word >> 16), uint8_t(word >> 24)});
        return bytes;
    }
    static Bytes RequestFrame(const Bytes& bytes) { return Frame(uint32_t(bytes.size()), bytes); }
    static Bytes ReplyFrame(uint32_t status, const Bytes& b) { return Frame(4 + b.size(), Frame(status, b)); }
    static bool Send(int fd, const Bytes& b) { return send(fd, b.data(), b.size(), MSG_NOSIGNAL) == ssize_t(b.size()); }
    // Exactly `size` bytes within `timeoutMs`; false on end of stream, error or timeout.
    static bool RecvExact(int fd, void* out, size_t size, int timeoutMs)
    {
        ssize_t n = 1;
        for (size_t done = 0; done < size && n > 0; done += size_t(n)) {
            pollfd entry{fd, POLLIN, 0};
            n = poll(&entry, 1, timeoutMs) > 0 ? read(fd, static_cast<uint8_t*>(out) + done, size - done) : -1;
        }
        return n > 0;
    }
    // True when the peer has closed: the next read reports end of stream (or a reset) in time.
    static bool PeerClosed(int fd, int timeoutMs)
    {
        pollfd entry{fd, POLLIN, 0};
        return poll(&entry, 1, timeoutMs) > 0 && recv(fd, &entry, 1, MSG_DONTWAIT) <= 0;
    }
    static int Served(Kavo::IpcServer& server)  // one end of a pair whose other end `server` serves
    {
        int mine = -1, theirs = -1;
        return Kavo::MakeIpcSocketPair(mine, theirs) && server.Serve(theirs) ? mine : -1;
    }
    // Open descriptors ("fd") or threads ("task"); waits up to 2 s for `expected`, as threads leave late.
    static size_t ProcCount(const char* folder, size_t expected = 0)
    {
        for (int i = 0;; ++i, std::this_thread::sleep_for(10ms)) {
            auto count =
                size_t(std::distance(std::filesystem::directory_iterator(std::string("/proc/self/") + folder), {}));
            if (expected == 0 || count == expected || i == 200) {
                return count;
            }
        }
    }
    // One transaction: the first word of the reply, or minus the failure.
    static int32_t Call(IpcClient& client, Op op)
    {
        Parcel request, reply;
        request.WriteInt32(op);
        IpcResult result = client.Transact(request, reply, 2000ms);
        return result == IpcResult::OK ? reply.ReadInt32() : -static_cast<int32_t>(result);
    }
};

}  // namespace KavoTest::Ipc

#endif  // KAVO_TESTS_HOST_IPC_CHANNEL_FIXTURE_H
