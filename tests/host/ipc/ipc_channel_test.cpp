#include "kavo/host/ipc/ipc_channel.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "kavo/host/ipc/ipc_server.h"
#include "tests/host/ipc/channel_fixture.h"

namespace {

using namespace KavoTest::Ipc;

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
