#include "kavo/host/ipc/ipc_channel.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <tuple>

#include "kavo/host/ipc/ipc_server.h"
#include "kavo/host/ipc/ipc_skeleton.h"

namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<uint8_t>;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::Parcel;

constexpr uint32_t MAX = 96 * 1024;  // past the server's read chunk, so a frame takes several reads

// The first word picks what the handler does.
enum Op : int32_t { ECHO = 0x100, DECLINE = 0x200, THROW = 0x300, SLOW = 0x400, UID = 0x500 };

bool Handle(Parcel& request, Parcel& reply)
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

using ClientAgainstScriptedPeer = Channel;

TEST_F(ClientAgainstScriptedPeer, EachReplyShapeGivesItsResultAndOnlyOkTouchesTheReply)
{
    struct Case {
        const char* name;
        Bytes answer;
        bool closeAfter;
        size_t replyCapacity;
        IpcResult expected;
    };
    const Bytes cut = Frame(8, {0, 0, 0, 0, 7, 0});  // an OK reply of one word, cut inside the word
    const Case cases[] = {
        {"a declined request keeps the connection", ReplyFrame(1, {}), false, 64, IpcResult::REFUSED},
        {"a peer that closes without a byte is gone", {}, true, 64, IpcResult::PEER_GONE},
        {"a stream that ends inside the length word", {8, 0}, true, 64, IpcResult::SHORT_FRAME},
        {"a stream that ends inside the reply bytes", cut, true, 64, IpcResult::SHORT_FRAME},
        {"a frame too short for its status word", {2, 0, 0, 0, 0, 0}, false, 64, IpcResult::SHORT_FRAME},
        {"a reply past the reply's capacity", ReplyFrame(0, Bytes(20)), false, 16, IpcResult::FRAME_TOO_LARGE},
        {"a reply exactly at the reply's capacity", ReplyFrame(0, Bytes(16)), false, 16, IpcResult::OK},
        {"a status word no server sends", ReplyFrame(99, {}), false, 64, IpcResult::BAD_FRAME},
        {"a server naming its deadline", ReplyFrame(3, {}), true, 64, IpcResult::DEADLINE_PASSED},
        {"a silent peer outlives the deadline", {}, false, 64, IpcResult::DEADLINE_PASSED},
        {"half a frame then silence outlives the deadline", cut, false, 64, IpcResult::DEADLINE_PASSED},
    };
    for (const auto& c : cases) {
        int clientFd = -1, peerFd = -1;
        ASSERT_TRUE(Kavo::MakeIpcSocketPair(clientFd, peerFd));
        IpcClient client(clientFd);
        Parcel request;
        request.WriteString("ping");
        Bytes received(4 + request.GetDataSize());
        std::thread peer([&] {
            RecvExact(peerFd, received.data(), received.size(), 2000);
            Send(peerFd, c.answer);
            (void)(c.closeAfter && shutdown(peerFd, SHUT_RDWR));
        });
        Parcel reply;
        reply.WriteInt32(0x5A5A5A5A);
        reply.SetMaxCapacity(c.replyCapacity);
        EXPECT_EQ(client.Transact(request, reply, 100ms), c.expected) << c.name;
        peer.join();
        close(peerFd);
        bool kept = c.expected <= IpcResult::REFUSED;
        EXPECT_EQ(received, RequestFrame(DataOf(request))) << c.name;
        bool ok = c.expected == IpcResult::OK;
        EXPECT_EQ(DataOf(reply), ok ? Bytes(c.answer.begin() + 8, c.answer.end()) : Bytes(4, 0x5A)) << c.name;
        EXPECT_EQ(reply.GetReadPosition(), 0u) << c.name;
        EXPECT_EQ(client.Transact(request, reply, 100ms), kept ? IpcResult::PEER_GONE : IpcResult::NOT_CONNECTED)
            << c.name << ": the next transaction";
    }
}

// Raw connections to a served server, one at a time: a new one once the server closed the last.
struct ServerAgainstRawPeers : Channel {
    // Sends a frame and reads its answer: its status, or -1 when the answer is not framed or the
    // server keeps a connection it gave up on. `data` keeps the reply's bytes.
    int32_t Exchange(const Bytes& frame)
    {
        fd = fd >= 0 ? fd : Served(server);
        bool sent = Send(fd, frame);
        uint8_t w[8] = {};
        bool framed = RecvExact(fd, w, 8, 5000);
        uint32_t size = w[0] | w[1] << 8 | w[2] << 16;
        auto status = IpcResult(w[4] | w[5] << 8 | w[6] << 16 | uint32_t(w[7]) << 24);
        data.assign(size >= 4 ? size - 4 : 0, 0);
        bool good = sent && framed && size >= 4 && RecvExact(fd, data.data(), data.size(), 5000);
        if (!good || status > IpcResult::REFUSED) {
            good = good && PeerClosed(fd, 5000);
            close(std::exchange(fd, -1));
        }
        return good ? static_cast<int32_t>(status) : -1;
    }

    size_t fdsBefore = ProcCount("fd");
    size_t threadsBefore = (std::thread([] {}).join(), ProcCount("task"));  // after a sanitizer's helper thread
    Kavo::IpcServer server{Handle, Kavo::IpcServerOptions{100ms, MAX}};
    int fd = -1;
    Bytes data;
};

TEST_F(ServerAgainstRawPeers, EveryFrameIsAnsweredOrRefusedWithItsReasonAndNothingIsLeftBehind)
{
    auto op = [](Op op, const Bytes& rest) { return RequestFrame(Frame(op, rest)); };
    const std::tuple<const char*, Bytes, IpcResult> cases[] = {
        {"a request exactly at the frame size", op(ECHO, Bytes(MAX - 4, 0x3C)), IpcResult::OK},
        {"a declined request keeps the connection", op(DECLINE, {}), IpcResult::REFUSED},
        {"a throwing handler declines", op(THROW, {}), IpcResult::REFUSED},
        {"an empty request reaches the handler", RequestFrame({}), IpcResult::REFUSED},
        {"a length word one past the frame size", Frame(MAX + 1, {}), IpcResult::FRAME_TOO_LARGE},
        {"the largest length word", Frame(0xFFFFFFFFu, {1, 2, 3}), IpcResult::FRAME_TOO_LARGE},
        {"a length word cut short stalls past the deadline", {4, 0}, IpcResult::DEADLINE_PASSED},
        {"a handler slower than the deadline", op(SLOW, {}), IpcResult::DEADLINE_PASSED},
    };
    uint64_t observed[8] = {};  // by result
    for (const auto& [name, frame, expected] : cases) {
        int32_t status = Exchange(frame);  // an OK answer echoes the request
        ASSERT_EQ(status, int32_t(expected)) << name;
        EXPECT_EQ(data, status == 0 ? Bytes(frame.begin() + 4, frame.end()) : Bytes()) << name;
        observed[status]++;
    }
    close(std::exchange(fd, -1));
    server.WaitUntilIdle();
    for (int result = 0; result < 8; ++result) {  // one count per transaction
        EXPECT_EQ(server.GetCount(IpcResult(result)), observed[result]) << Kavo::IpcResultName(IpcResult(result));
    }
    // Only the supervisor is left, with its one descriptor.
    EXPECT_EQ(ProcCount("task", threadsBefore + 1), threadsBefore + 1);
    EXPECT_EQ(ProcCount("fd"), fdsBefore + 1);
    server.Stop();
    EXPECT_EQ(ProcCount("task", threadsBefore), threadsBefore);
    EXPECT_EQ(ProcCount("fd"), fdsBefore);
}

TEST_F(Channel, CallingUidIsThePeersKernelUidAndStopLetsARunningHandlerReplyThenClosesEverything)
{
    const bool root = geteuid() == 0;
    const int32_t childUid = root ? 65534 : static_cast<int32_t>(getuid());
    const std::string path = "/tmp/kavo-ipc-" + std::to_string(getpid()) + ".sock";
    pid_t child = fork();  // before any server thread exists; connects once the server listens
    if (child == 0) {
        IpcClient client;
        for (int i = 0; i < 500 && (!root || setuid(65534) == 0) && !client.Connect(path); ++i) {
            usleep(10000);
        }
        _exit(Call(client, UID) == childUid ? 0 : 1);
    }
    Kavo::IpcServer server(Handle);
    ASSERT_TRUE(server.Listen(path) && chmod(path.c_str(), 0777) == 0);
    EXPECT_FALSE(Kavo::IpcServer(Handle).Listen(path)) << "the path is taken";
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "the child saw its own uid, as the kernel saw it connect";
    IpcClient pair(Served(server));
    pair.SetMaxFrameSize(3);
    EXPECT_EQ(Call(pair, UID), -static_cast<int32_t>(IpcResult::FRAME_TOO_LARGE)) << "a request past the frame size";
    pair.SetMaxFrameSize(4);
    EXPECT_EQ(Call(pair, UID), static_cast<int32_t>(getuid())) << "a pair's peer is its creator";
    IpcClient idle;
    ASSERT_TRUE(idle.Connect(path));
    int32_t slowAnswer = -1;
    std::thread slow([&] { slowAnswer = Call(pair, SLOW); });
    std::this_thread::sleep_for(50ms);
    server.Stop();
    slow.join();
    EXPECT_EQ(slowAnswer, 0) << "a running handler still replies";
    EXPECT_EQ(server.GetCount(IpcResult::OK), 3u) << "the child's, the pair's and the slow one: none past the size";
    EXPECT_EQ(Call(idle, ECHO), -static_cast<int32_t>(IpcResult::PEER_GONE)) << "an idle connection is closed";
    EXPECT_FALSE(server.Listen(path)) << "a stopped server serves nothing";
    EXPECT_NE(access(path.c_str(), F_OK), 0) << "the socket file is removed";
}

}  // namespace
