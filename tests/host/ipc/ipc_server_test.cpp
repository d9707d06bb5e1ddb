#include "kavo/host/ipc/ipc_server.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "tests/host/ipc/ipc_test_util.h"

namespace {

using namespace std::chrono_literals;
using IpcTest::Bytes;
using IpcTest::Eventually;
using IpcTest::RequestFrame;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::IpcServer;
using Kavo::Parcel;

enum Op : uint8_t { ECHO = 1, DECLINE = 2, THROW = 3, SLOW = 4, CALLING_UID = 5 };

// The first word picks what the handler does; ECHO sends the whole request back.
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
        case CALLING_UID:
            return reply.WriteInt32(Kavo::IPCSkeleton::GetCallingUid());
        default:
            return false;
    }
}

// One transaction: the first word of the reply, or minus the failure.
int32_t Call(IpcClient& client, Op op, int32_t argument = 0)
{
    Parcel request;
    request.WriteInt32(op);
    request.WriteInt32(argument);
    Parcel reply;
    IpcResult result = client.Transact(request, reply, 2000ms);
    return result == IpcResult::OK ? reply.ReadInt32() : -static_cast<int32_t>(result);
}

TEST(ServerAgainstRawPeer, EveryRequestIsAnsweredOrRefusedWithItsReason)
{
    constexpr uint32_t MAX = 96 * 1024;  // past the server's read chunk, so a frame takes several reads
    IpcServer server(Handle, Kavo::IpcServerOptions{100ms, MAX});
    ASSERT_TRUE(server.Listen(IpcTest::SocketName("raw")));
    struct Case {
        const char* name;
        Bytes sent;
        bool endStream;
        IpcResult expected;  // OK echoes the request; results past REFUSED close the connection
    };
    Bytes atLimit = Bytes{ECHO, 0, 0, 0};
    atLimit.resize(MAX, 0x3C);
    const Case cases[] = {
        {"a valid request is echoed", RequestFrame({ECHO, 0, 0, 0, 9, 0, 0, 0}), false, IpcResult::OK},
        {"a request exactly at the frame size", RequestFrame(atLimit), false, IpcResult::OK},
        {"a declined request keeps the connection", RequestFrame({DECLINE, 0, 0, 0}), false, IpcResult::REFUSED},
        {"a throwing handler declines", RequestFrame({THROW, 0, 0, 0}), false, IpcResult::REFUSED},
        {"an empty request reaches the handler", RequestFrame({}), false, IpcResult::REFUSED},
        {"a length word one past the frame size", IpcTest::Frame(MAX + 1, {}), false, IpcResult::FRAME_TOO_LARGE},
        {"the largest length word", IpcTest::Frame(0xFFFFFFFFu, {1, 2, 3}), false, IpcResult::FRAME_TOO_LARGE},
        {"the stream ends inside the length word", {4, 0}, true, IpcResult::SHORT_FRAME},
        {"the stream ends inside the request", IpcTest::Frame(100, Bytes(10)), true, IpcResult::SHORT_FRAME},
        {"a length word cut short stalls past the deadline", {4, 0}, false, IpcResult::DEADLINE_PASSED},
        {"a request cut short stalls", IpcTest::Frame(100, Bytes(10)), false, IpcResult::DEADLINE_PASSED},
        {"a handler slower than the deadline", RequestFrame({SLOW, 0, 0, 0}), false, IpcResult::DEADLINE_PASSED},
    };
    uint64_t expectedCounts[8] = {};
    for (const auto& c : cases) {
        int fd = IpcTest::ConnectRaw(IpcTest::SocketName("raw"));
        ASSERT_TRUE(IpcTest::SendBytes(fd, c.sent)) << c.name;
        if (c.endStream) {
            shutdown(fd, SHUT_WR);
        }
        IpcTest::Answer answer = IpcTest::ReadAnswer(fd, 2000);
        ASSERT_TRUE(answer.framed) << c.name;
        EXPECT_EQ(answer.status, static_cast<uint32_t>(c.expected)) << c.name;
        EXPECT_EQ(answer.data, c.expected == IpcResult::OK ? Bytes(c.sent.begin() + 4, c.sent.end()) : Bytes())
            << c.name;
        ++expectedCounts[static_cast<int>(c.expected)];
        if (c.expected > IpcResult::REFUSED) {
            EXPECT_TRUE(IpcTest::PeerClosed(fd, 2000)) << c.name;
        } else {
            ASSERT_TRUE(IpcTest::SendBytes(fd, RequestFrame({ECHO, 0, 0, 0}))) << c.name;
            EXPECT_EQ(IpcTest::ReadAnswer(fd, 2000).data, Bytes({ECHO, 0, 0, 0})) << c.name << ": the next request";
            ++expectedCounts[static_cast<int>(IpcResult::OK)];
        }
        close(fd);
    }
    server.Stop();
    for (int result = 0; result < 8; ++result) {
        EXPECT_EQ(server.GetCount(static_cast<IpcResult>(result)), expectedCounts[result])
            << Kavo::IpcResultName(static_cast<IpcResult>(result));
    }
}

TEST(ServingThreadIdentity, CallingUidIsThePeersKernelUidWhateverThePeerClaims)
{
    const bool root = geteuid() == 0;
    const int32_t childUid = root ? 65534 : static_cast<int32_t>(getuid());
    const std::string name = IpcTest::SocketName("uid");
    IpcTest::ForkedPeer child([&](int out) {  // forked before any server thread exists
        IpcClient client;
        int32_t seen = (!root || setuid(65534) == 0) && client.Connect(name) ? Call(client, CALLING_UID, 0) : -100;
        (void)!write(out, &seen, sizeof(seen));  // it claimed root; the answer says who it is
    });
    IpcServer server(Handle);
    ASSERT_TRUE(server.Listen(name));
    child.Go();
    int clientFd = -1;
    int serverFd = -1;
    ASSERT_TRUE(Kavo::MakeIpcSocketPair(clientFd, serverFd));
    ASSERT_TRUE(server.Serve(serverFd));
    IpcClient mine(clientFd);
    EXPECT_EQ(Call(mine, CALLING_UID, childUid), static_cast<int32_t>(getuid())) << "a pair's peer is its creator";
    int32_t seenByChild = -200;
    ASSERT_TRUE(child.Read(&seenByChild, sizeof(seenByChild), 5000));
    EXPECT_EQ(seenByChild, childUid) << "the child's uid as the kernel saw it connect";
    EXPECT_EQ(Kavo::IPCSkeleton::GetCallingUid(), Kavo::IPCSkeleton::GetSelfUid()) << "this thread serves no call";
}

TEST(ServerLifecycle, NoThreadOrDescriptorOutlivesItsConnection)
{
    const size_t fdsBefore = IpcTest::OpenFdCount();
    const size_t threadsBefore = IpcTest::ThreadBaseline();
    const std::string path = "/tmp/kavo-ipc-" + std::to_string(getpid()) + ".sock";
    {
        IpcServer server(Handle, Kavo::IpcServerOptions{1000ms, 4096, 3});
        ASSERT_TRUE(server.Listen(path));
        EXPECT_FALSE(server.Listen(IpcTest::SocketName("second"))) << "one address per server";
        EXPECT_FALSE(IpcServer(Handle).Listen(path)) << "the path is taken";
        const size_t fdsListening = IpcTest::OpenFdCount();
        const size_t threadsListening = IpcTest::ThreadCount();
        for (int i = 0; i < 20; ++i) {
            IpcClient client;
            EXPECT_TRUE(client.Connect(path) && Call(client, ECHO) == ECHO);
            client.Close();
            server.WaitUntilIdle();  // the connection's thread is joined once its peer has left
        }
        EXPECT_TRUE(Eventually([&] { return IpcTest::ThreadCount() == threadsListening; }));
        EXPECT_EQ(IpcTest::OpenFdCount(), fdsListening);

        IpcClient held[4];  // three fill the server; the fourth is closed as it arrives
        for (auto& client : held) {
            ASSERT_TRUE(client.Connect(path));
        }
        EXPECT_EQ(Call(held[0], ECHO) + Call(held[1], ECHO) + Call(held[2], ECHO), 3 * ECHO);
        EXPECT_EQ(Call(held[3], ECHO), -static_cast<int32_t>(IpcResult::PEER_GONE));

        int32_t slowAnswer = -1;  // Stop closes idle connections and lets a running handler reply
        std::thread slow([&] { slowAnswer = Call(held[0], SLOW); });
        std::this_thread::sleep_for(50ms);
        server.Stop();
        slow.join();
        EXPECT_EQ(slowAnswer, 0);
        EXPECT_EQ(Call(held[1], ECHO), -static_cast<int32_t>(IpcResult::PEER_GONE));
        EXPECT_EQ(server.GetConnectionCount(), 0u);
        EXPECT_FALSE(server.Listen(path)) << "a stopped server serves nothing";
        EXPECT_NE(access(path.c_str(), F_OK), 0) << "the socket file is removed";
    }
    EXPECT_TRUE(Eventually([&] { return IpcTest::ThreadCount() == threadsBefore; }));
    EXPECT_EQ(IpcTest::OpenFdCount(), fdsBefore);
}

}  // namespace
