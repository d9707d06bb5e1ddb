#include "kavo/host/ipc/ipc_server.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <stdexcept>
#include <thread>

#include "kavo/host/ipc/ipc_skeleton.h"
#include "tests/host/ipc/ipc_test_util.h"

namespace {

using namespace std::chrono_literals;
using IpcTest::Bytes;
using IpcTest::ChildPeer;
using IpcTest::Eventually;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::IpcServer;
using Kavo::Parcel;

enum Op : int32_t { ECHO_INT = 1, DECLINE = 2, THROW = 3, SLOW = 4, CALLING_UID = 5 };

// The first word picks what the handler does; a request without one is declined.
bool Handle(Parcel& request, Parcel& reply)
{
    int32_t op = 0;
    if (!request.ReadInt32(op)) {
        return false;
    }
    switch (op) {
        case ECHO_INT:
            return reply.WriteInt32(request.ReadInt32());
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

Bytes Request(int32_t op, int32_t argument = 0)
{
    Bytes bytes;
    IpcTest::AppendWord(bytes, static_cast<uint32_t>(op));
    IpcTest::AppendWord(bytes, static_cast<uint32_t>(argument));
    return bytes;
}

Parcel ToParcel(const Bytes& bytes)
{
    Parcel parcel;
    parcel.ParseFrom(bytes.data(), bytes.size());
    return parcel;
}

// One transaction on a fresh connection: the echoed value, or minus the failure.
int EchoThrough(const std::string& path, int32_t value)
{
    IpcClient client;
    if (!client.Connect(path)) {
        return -100;
    }
    Parcel request = ToParcel(Request(ECHO_INT, value));
    Parcel reply;
    IpcResult result = client.Transact(request, reply, 1000ms);
    return result == IpcResult::OK ? reply.ReadInt32() : -static_cast<int>(result);
}

// A raw peer sends bytes; the server answers or refuses, and says why before it closes.
class ServerAgainstRawPeer : public ::testing::Test {
protected:
    static constexpr size_t MAX_FRAME = 4096;

    ServerAgainstRawPeer() : server_(Handle, Kavo::IpcServerOptions{100ms, MAX_FRAME})
    {
        EXPECT_TRUE(server_.Listen(dir_.Path("raw.sock")));
    }

    IpcTest::SocketDir dir_;
    IpcServer server_;
};

TEST_F(ServerAgainstRawPeer, EveryRequestIsAnsweredOrRefusedWithItsReason)
{
    struct Case {
        const char* name;
        Bytes sent;
        bool endStream;
        IpcResult expected;  // OK answers 9; every result but OK and REFUSED closes the connection
    };
    using IpcTest::RequestFrame;
    Bytes atLimit = Request(ECHO_INT, 9);
    atLimit.resize(MAX_FRAME);
    const Case cases[] = {
        {"a valid request is answered", RequestFrame(Request(ECHO_INT, 9)), false, IpcResult::OK},
        {"a request exactly at the frame size", RequestFrame(atLimit), false, IpcResult::OK},
        {"a declined request keeps the connection", RequestFrame(Request(DECLINE)), false, IpcResult::REFUSED},
        {"a throwing handler declines", RequestFrame(Request(THROW)), false, IpcResult::REFUSED},
        {"an empty request reaches the handler", RequestFrame({}), false, IpcResult::REFUSED},
        {"a length word one past the frame size", RequestFrame(MAX_FRAME + 1, {}), false, IpcResult::FRAME_TOO_LARGE},
        {"the largest length word", RequestFrame(0xFFFFFFFFu, {1, 2, 3}), false, IpcResult::FRAME_TOO_LARGE},
        {"the stream ends inside the length word", {4, 0}, true, IpcResult::SHORT_FRAME},
        {"the stream ends inside the request", RequestFrame(100, Bytes(10)), true, IpcResult::SHORT_FRAME},
        {"a length word cut short stalls past the deadline", {4, 0}, false, IpcResult::DEADLINE_PASSED},
        {"a request cut short stalls past the deadline", RequestFrame(100, Bytes(10)), false,
         IpcResult::DEADLINE_PASSED},
        {"a handler slower than the deadline", RequestFrame(Request(SLOW)), false, IpcResult::DEADLINE_PASSED},
    };
    uint64_t expectedCounts[8] = {};
    for (const auto& c : cases) {
        int fd = IpcTest::ConnectTo(dir_.Path("raw.sock"));
        ASSERT_GE(fd, 0) << c.name;
        ASSERT_TRUE(IpcTest::SendBytes(fd, c.sent)) << c.name;
        if (c.endStream) {
            shutdown(fd, SHUT_WR);
        }
        IpcTest::Answer answer = IpcTest::ReadAnswer(fd, 2000);
        ASSERT_TRUE(answer.framed) << c.name;
        EXPECT_EQ(answer.status, static_cast<uint32_t>(c.expected)) << c.name;
        EXPECT_EQ(answer.data, (c.expected == IpcResult::OK ? Bytes{9, 0, 0, 0} : Bytes{})) << c.name;
        ++expectedCounts[static_cast<int>(c.expected)];
        if (c.expected != IpcResult::OK && c.expected != IpcResult::REFUSED) {
            EXPECT_TRUE(IpcTest::PeerClosed(fd, 2000)) << c.name;
        } else {
            ASSERT_TRUE(IpcTest::SendBytes(fd, IpcTest::RequestFrame(Request(ECHO_INT, 5)))) << c.name;
            EXPECT_EQ(IpcTest::ReadAnswer(fd, 2000).data, Bytes({5, 0, 0, 0})) << c.name << ": the next request";
            ++expectedCounts[static_cast<int>(IpcResult::OK)];
        }
        close(fd);
    }
    server_.WaitUntilIdle();
    for (int result = 0; result < 8; ++result) {
        EXPECT_EQ(server_.GetCount(static_cast<IpcResult>(result)), expectedCounts[result])
            << Kavo::IpcResultName(static_cast<IpcResult>(result));
    }
}

TEST(ServingThreadIdentity, CallingUidIsThePeersKernelUidWhateverThePeerClaims)
{
    const bool root = geteuid() == 0;
    const int32_t childUid = root ? 65534 : static_cast<int32_t>(getuid());
    IpcTest::SocketDir dir;
    const std::string path = dir.Path("uid.sock");
    // The child is forked before any server thread exists, then waits for the word to connect.
    ChildPeer child([&](int out) {
        IpcClient client;
        Parcel request = ToParcel(Request(CALLING_UID, 0));  // claims to be root
        Parcel reply;
        int32_t seen = -1;
        if ((!root || setuid(65534) == 0) && client.Connect(path) &&
            client.Transact(request, reply, 2000ms) == IpcResult::OK) {
            seen = reply.ReadInt32();
        }
        (void)!write(out, &seen, sizeof(seen));
    });
    IpcServer server(Handle);
    ASSERT_TRUE(server.Listen(path));
    chmod(path.c_str(), 0666);
    child.Go();

    int clientFd = -1;
    int serverFd = -1;
    ASSERT_TRUE(Kavo::MakeIpcSocketPair(clientFd, serverFd));
    ASSERT_TRUE(server.Serve(serverFd));
    IpcClient mine(clientFd);
    Parcel request = ToParcel(Request(CALLING_UID, childUid));  // claims to be the child
    Parcel reply;
    ASSERT_EQ(mine.Transact(request, reply, 2000ms), IpcResult::OK);
    EXPECT_EQ(reply.ReadInt32(), static_cast<int32_t>(getuid())) << "a socket pair's peer is its creator";
    int32_t seenByChild = -2;
    ASSERT_TRUE(child.Read(&seenByChild, sizeof(seenByChild), 5000));
    EXPECT_EQ(seenByChild, childUid) << "the child's uid as the kernel saw it connect";
    EXPECT_EQ(Kavo::IPCSkeleton::GetCallingUid(), Kavo::IPCSkeleton::GetSelfUid()) << "this thread serves no call";
}

TEST(ServerLifecycle, NoThreadOrDescriptorOutlivesItsConnection)
{
    const size_t fdsBefore = IpcTest::OpenFdCount();
    const size_t threadsBefore = IpcTest::ThreadBaseline();
    IpcTest::SocketDir dir;
    const std::string path = dir.Path("life.sock");
    {
        IpcServer server(Handle, Kavo::IpcServerOptions{1000ms, 4096, 3});
        ASSERT_TRUE(server.Listen(path));
        EXPECT_FALSE(server.Listen(dir.Path("second.sock"))) << "one path per server";
        EXPECT_FALSE(IpcServer(Handle).Listen(path)) << "the path is taken";
        const size_t fdsListening = IpcTest::OpenFdCount();
        const size_t threadsListening = IpcTest::ThreadCount();
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(EchoThrough(path, i), i);
            server.WaitUntilIdle();  // the connection's thread is joined once its peer has left
        }
        EXPECT_TRUE(Eventually([&] { return IpcTest::ThreadCount() == threadsListening; }));
        EXPECT_EQ(IpcTest::OpenFdCount(), fdsListening);

        // Three connections fill the server; a fourth is closed as it arrives.
        IpcClient held[3];
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(held[i].Connect(path));
            Parcel request = ToParcel(Request(ECHO_INT, i));
            Parcel reply;
            ASSERT_EQ(held[i].Transact(request, reply, 1000ms), IpcResult::OK);
        }
        EXPECT_EQ(EchoThrough(path, 1), -static_cast<int>(IpcResult::PEER_GONE));

        // Stop closes idle connections and lets a running handler deliver its reply.
        IpcResult slowResult = IpcResult::NOT_CONNECTED;
        std::thread slow([&] {
            Parcel request = ToParcel(Request(SLOW));
            Parcel reply;
            slowResult = held[0].Transact(request, reply, 2000ms);
        });
        std::this_thread::sleep_for(50ms);
        server.Stop();
        slow.join();
        EXPECT_EQ(slowResult, IpcResult::OK);
        Parcel request = ToParcel(Request(ECHO_INT, 1));
        Parcel reply;
        EXPECT_EQ(held[1].Transact(request, reply, 1000ms), IpcResult::PEER_GONE);
        EXPECT_EQ(server.GetConnectionCount(), 0u);
        EXPECT_FALSE(server.Listen(path)) << "a stopped server serves nothing";
        EXPECT_NE(access(path.c_str(), F_OK), 0) << "the socket file is removed";
    }
    EXPECT_TRUE(Eventually([&] { return IpcTest::ThreadCount() == threadsBefore; }));
    EXPECT_EQ(IpcTest::OpenFdCount(), fdsBefore);
}

}  // namespace
