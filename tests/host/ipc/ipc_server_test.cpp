#include "kavo/host/ipc/ipc_server.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <stdexcept>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "kavo/host/want/want_params.h"
#include "tests/host/ipc/ipc_test_util.h"

namespace {

using namespace std::chrono_literals;
using namespace IpcTest;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::Parcel;

// The first word picks what the handler does. Only STRUCTURED is a one-byte value, so a mutated
// structured request never turns into another operation.
enum Op : int32_t { STRUCTURED = 1, ECHO = 0x100, DECLINE = 0x200, THROW = 0x300, SLOW = 0x400, UID = 0x500 };

bool Handle(Parcel& request, Parcel& reply)
{
    std::string bundle;
    int32_t count = 0;
    switch (request.ReadInt32()) {
        case STRUCTURED: {  // as the push service reads one: a bundle name, parameters, a count
            auto params =
                request.ReadString(bundle) ? request.ReadStrongParcelable<Kavo::AAFwk::WantParams>() : nullptr;
            return params != nullptr && request.ReadInt32(count) && reply.WriteString(bundle);
        }
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

Bytes Structured()
{
    Kavo::AAFwk::WantParams nested;
    nested.SetParam("channel", "default");
    Kavo::AAFwk::WantParams params;
    params.SetParam("title", "New message");
    params.SetParam("extra", nested);
    Parcel parcel;
    parcel.WriteInt32(STRUCTURED);
    parcel.WriteString("com.example.push");
    parcel.WriteParcelable(&params);
    parcel.WriteInt32(2);
    return Bytes(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
}

Bytes OpFrame(Op op, size_t size = 4, uint8_t fill = 0)
{
    Bytes bytes = Frame(op, {});
    bytes.resize(size, fill);
    return RequestFrame(bytes);
}

// One transaction: the first word of the reply, or minus the failure.
int32_t Call(IpcClient& client, Op op)
{
    Parcel request;
    request.WriteInt32(op);
    request.WriteInt32(0);  // a uid claim the server must ignore
    Parcel reply;
    IpcResult result = client.Transact(request, reply, 2000ms);
    return result == IpcResult::OK ? reply.ReadInt32() : -static_cast<int32_t>(result);
}

constexpr uint32_t MAX = 96 * 1024;  // past the server's read chunk, so a frame takes several reads

// Sends a frame on `fd` (connecting first when it is -1) and reads its answer. An answer whose
// status is not in `allowed`, or that ends the connection without the server closing it, comes
// back unframed; a closed connection leaves `fd` at -1.
Answer Exchange(int& fd, const Bytes& frame, bool endStream, std::initializer_list<IpcResult> allowed)
{
    fd = fd >= 0 ? fd : ConnectRaw(SocketName("server"));
    bool sent = SendBytes(fd, frame);
    (void)(endStream && shutdown(fd, SHUT_WR));
    Answer answer = ReadAnswer(fd, 5000);
    answer.framed = sent && answer.framed && std::count(allowed.begin(), allowed.end(), IpcResult(answer.status)) > 0;
    if (!answer.framed || answer.status > static_cast<uint32_t>(IpcResult::REFUSED) || endStream) {
        answer.framed = answer.framed && PeerClosed(fd, 5000);
        close(fd);
        fd = -1;
    }
    return answer;
}

// A random frame: a real request cut, mutated, replaced by noise or framed with a hostile length.
Answer Attack(std::mt19937& rng, int& fd, const Bytes& real, int index)
{
    auto below = [&rng](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(rng); };
    const Bytes prefix(real.begin(), real.begin() + static_cast<long>(below(real.size())));
    const auto full = static_cast<uint32_t>(real.size());
    if (index % 300 == 299) {  // part of a frame, then silence past the server's deadline
        return Exchange(fd, Frame(full, prefix), false, {IpcResult::DEADLINE_PASSED});
    }
    Bytes changed = below(2) == 0 ? real : Bytes(below(512));  // a real request mutated, or noise
    for (size_t n = changed == real ? 1 + below(4) : changed.size(); n > 0; --n) {
        changed[below(changed.size())] = static_cast<uint8_t>(rng());
    }
    switch (below(6)) {
        case 0:
            return Exchange(fd, RequestFrame(real), false, {IpcResult::OK});
        case 1:  // a valid prefix, framed as what it is
            return Exchange(fd, RequestFrame(prefix), false, {IpcResult::REFUSED});
        case 2:
            return Exchange(fd, RequestFrame(changed), false, {IpcResult::OK, IpcResult::REFUSED});
        case 3:
            return Exchange(fd, Frame(MAX + 1 + rng() % (~0u - MAX), prefix), false, {IpcResult::FRAME_TOO_LARGE});
        case 4:  // the stream ends inside the request, or inside the length word
            return Exchange(fd, Frame(full, prefix), true, {IpcResult::SHORT_FRAME});
        default:
            return Exchange(fd, Bytes(real.begin(), real.begin() + 1 + below(3)), true, {IpcResult::SHORT_FRAME});
    }
}

TEST(ServerAgainstRawPeers, EveryFrameIsAnsweredOrRefusedWithItsReasonAndNothingIsLeftBehind)
{
    const size_t fdsBefore = ProcCount("fd");
    const size_t threadsBefore = ProcCount("task", true);
    Kavo::IpcServer server(Handle, Kavo::IpcServerOptions{100ms, MAX});
    ASSERT_TRUE(server.Listen(SocketName("server")));
    const size_t fdsListening = ProcCount("fd");
    const size_t threadsListening = ProcCount("task");
    struct Case {
        const char* name;
        Bytes sent;
        bool endStream;
        IpcResult expected;  // OK echoes the request; results past REFUSED close the connection
    };
    const Case cases[] = {
        {"a valid request is echoed", OpFrame(ECHO, 8, 9), false, IpcResult::OK},
        {"a request exactly at the frame size", OpFrame(ECHO, MAX, 0x3C), false, IpcResult::OK},
        {"a declined request keeps the connection", OpFrame(DECLINE), false, IpcResult::REFUSED},
        {"a throwing handler declines", OpFrame(THROW), false, IpcResult::REFUSED},
        {"an empty request reaches the handler", RequestFrame({}), false, IpcResult::REFUSED},
        {"a length word one past the frame size", Frame(MAX + 1, {}), false, IpcResult::FRAME_TOO_LARGE},
        {"the largest length word", Frame(0xFFFFFFFFu, {1, 2, 3}), false, IpcResult::FRAME_TOO_LARGE},
        {"the stream ends inside the length word", {4, 0}, true, IpcResult::SHORT_FRAME},
        {"the stream ends inside the request", Frame(100, Bytes(10)), true, IpcResult::SHORT_FRAME},
        {"a length word cut short stalls past the deadline", {4, 0}, false, IpcResult::DEADLINE_PASSED},
        {"a request cut short stalls", Frame(100, Bytes(10)), false, IpcResult::DEADLINE_PASSED},
        {"a handler slower than the deadline", OpFrame(SLOW), false, IpcResult::DEADLINE_PASSED},
    };
    uint64_t observed[8] = {};
    int fd = -1;
    for (const auto& c : cases) {
        Answer answer = Exchange(fd, c.sent, c.endStream, {c.expected});
        EXPECT_TRUE(answer.framed) << c.name;
        EXPECT_EQ(answer.data, c.expected == IpcResult::OK ? Bytes(c.sent.begin() + 4, c.sent.end()) : Bytes())
            << c.name;
        observed[answer.status & 7]++;
    }
    close(fd);
    // A flood of a few thousand random frames while a well-behaved client keeps transacting.
    const Bytes real = Structured();
    std::atomic<bool> flooding{true};
    int good[2] = {};  // answered as expected, not
    auto behave = [&](int atMost) {
        IpcClient client;
        client.Connect(SocketName("server"));
        for (int i = 0; i < atMost && flooding; ++i, std::this_thread::sleep_for(200us)) {
            Parcel request;
            request.WriteBuffer(real.data(), real.size());
            Parcel reply;
            good[client.Transact(request, reply, 2s) != IpcResult::OK || reply.ReadString() != "com.example.push"]++;
        }
    };
    behave(50);  // warms the allocator up before the heap is measured
    server.WaitUntilIdle();
    const size_t heapBefore = mallinfo2().uordblks;
    std::thread wellBehaved(behave, 1000000);
    std::mt19937 rng(20261122);
    int mismatches = 0;
    for (int i = 0; i < 3000; ++i) {
        Answer answer = Attack(rng, fd, real, i);
        EXPECT_TRUE(answer.framed || mismatches++ > 0) << "frame " << i << " answered " << answer.status;
        observed[answer.status & 7]++;
    }
    flooding = false;
    wellBehaved.join();
    close(fd);
    EXPECT_EQ(mismatches, 0);
    EXPECT_EQ(good[1], 0);
    observed[0] += static_cast<uint64_t>(good[0]);
    server.WaitUntilIdle();
    for (int result = 0; result < 8; ++result) {  // one count per transaction
        EXPECT_EQ(server.GetCount(IpcResult(result)), observed[result]) << Kavo::IpcResultName(IpcResult(result));
    }
    EXPECT_LT(mallinfo2().uordblks, heapBefore + 256 * 1024) << "heap in use, bytes";
    EXPECT_TRUE(Eventually([&] { return ProcCount("task") == threadsListening; })) << "each connection's thread joined";
    EXPECT_EQ(ProcCount("fd"), fdsListening);
    server.Stop();
    EXPECT_TRUE(Eventually([&] { return ProcCount("task") == threadsBefore; }));
    EXPECT_EQ(ProcCount("fd"), fdsBefore);
}

TEST(ServingThreadIdentity, CallingUidIsThePeersKernelUidWhateverThePeerClaims)
{
    const bool root = geteuid() == 0;
    const int32_t childUid = root ? 65534 : static_cast<int32_t>(getuid());
    const std::string name = SocketName("uid");
    pid_t child = fork();  // before any server thread exists; connects once the server listens
    if (child == 0) {
        IpcClient client;
        for (int i = 0; i < 500 && (!root || setuid(65534) == 0) && !client.Connect(name); ++i) {
            usleep(10000);
        }
        _exit(Call(client, UID) == childUid ? 0 : 1);
    }
    Kavo::IpcServer server(Handle);
    ASSERT_TRUE(server.Listen(name));
    int clientFd = -1;
    int serverFd = -1;
    ASSERT_TRUE(Kavo::MakeIpcSocketPair(clientFd, serverFd) && server.Serve(serverFd));
    IpcClient mine(clientFd);
    EXPECT_EQ(Call(mine, UID), static_cast<int32_t>(getuid())) << "a pair's peer is its creator";
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "the child saw its own uid, as the kernel saw it connect";
    EXPECT_EQ(Kavo::IPCSkeleton::GetCallingUid(), Kavo::IPCSkeleton::GetSelfUid()) << "this thread serves no call";
}

TEST(ServerLifecycle, StopLetsARunningHandlerReplyThenClosesEverything)
{
    const std::string path = "/tmp/kavo-ipc-" + std::to_string(getpid()) + ".sock";
    Kavo::IpcServer server(Handle, Kavo::IpcServerOptions{1000ms, 4096, 3});
    ASSERT_TRUE(server.Listen(path));
    EXPECT_FALSE(server.Listen(SocketName("second"))) << "one address per server";
    EXPECT_FALSE(Kavo::IpcServer(Handle).Listen(path)) << "the path is taken";
    IpcClient held[4];  // three fill the server; the fourth is closed as it arrives
    for (auto& client : held) {
        ASSERT_TRUE(client.Connect(path));
    }
    EXPECT_EQ(Call(held[0], ECHO) + Call(held[1], ECHO) + Call(held[2], ECHO), 3 * ECHO);
    EXPECT_EQ(Call(held[3], ECHO), -static_cast<int32_t>(IpcResult::PEER_GONE));
    int32_t slowAnswer = -1;
    std::thread slow([&] { slowAnswer = Call(held[0], SLOW); });
    std::this_thread::sleep_for(50ms);
    server.Stop();
    slow.join();
    EXPECT_EQ(slowAnswer, 0);
    EXPECT_EQ(Call(held[1], ECHO), -static_cast<int32_t>(IpcResult::PEER_GONE));
    EXPECT_FALSE(server.Listen(path)) << "a stopped server serves nothing";
    EXPECT_NE(access(path.c_str(), F_OK), 0) << "the socket file is removed";
}

}  // namespace
