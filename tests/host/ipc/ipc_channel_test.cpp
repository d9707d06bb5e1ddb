#include "kavo/host/ipc/ipc_channel.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/host/ipc/ipc_test_util.h"

namespace {

using namespace std::chrono_literals;
using namespace IpcTest;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::Parcel;

Bytes DataOf(const Parcel& parcel)
{
    return Bytes(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
}

TEST(ClientAgainstScriptedPeer, EachReplyShapeGivesItsResultAndOnlyOkTouchesTheReply)
{
    struct Case {
        const char* name;
        Bytes answer;
        bool closeAfter;
        size_t replyCapacity;
        IpcResult expected;
    };
    Bytes cut = ReplyFrame(0, {7, 0, 0, 0});
    cut.resize(cut.size() - 2);
    const Case cases[] = {
        {"an OK frame fills the reply", ReplyFrame(0, {7, 0, 0, 0}), false, 64, IpcResult::OK},
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
        int clientFd = -1;
        int peerFd = -1;
        ASSERT_TRUE(Kavo::MakeIpcSocketPair(clientFd, peerFd));
        IpcClient client(clientFd);
        Parcel request;
        request.WriteString("ping");
        Bytes received(4 + request.GetDataSize());
        std::thread peer([&] {
            RecvExact(peerFd, received.data(), received.size(), 2000);
            SendBytes(peerFd, c.answer);
            (void)(c.closeAfter && shutdown(peerFd, SHUT_RDWR));
        });
        Parcel reply;
        reply.WriteInt32(0x5A5A5A5A);
        reply.SetMaxCapacity(c.replyCapacity);
        EXPECT_EQ(client.Transact(request, reply, 100ms), c.expected) << c.name;
        peer.join();
        close(peerFd);
        bool kept = c.expected <= IpcResult::REFUSED;
        EXPECT_EQ(client.IsConnected(), kept) << c.name;
        EXPECT_EQ(received, RequestFrame(DataOf(request))) << c.name;
        bool ok = c.expected == IpcResult::OK;
        EXPECT_EQ(DataOf(reply), ok ? Bytes(c.answer.begin() + 8, c.answer.end()) : Bytes(4, 0x5A)) << c.name;
        EXPECT_EQ(reply.GetReadPosition(), 0u) << c.name;
        EXPECT_EQ(client.Transact(request, reply, 100ms), kept ? IpcResult::PEER_GONE : IpcResult::NOT_CONNECTED)
            << c.name << ": the next transaction";
    }
}

TEST(ClientLimits, RequestsPastTheFrameSizeNeverLeaveTheClientAndBadAddressesNeverConnect)
{
    int clientFd = -1;
    int peerFd = -1;
    ASSERT_TRUE(Kavo::MakeIpcSocketPair(clientFd, peerFd));
    IpcClient client(clientFd);
    client.SetMaxFrameSize(64);
    Parcel request;
    request.WriteBuffer(Bytes(68).data(), 68);
    Parcel reply;
    EXPECT_EQ(client.Transact(request, reply, 50ms), IpcResult::FRAME_TOO_LARGE);
    EXPECT_TRUE(client.IsConnected());
    uint8_t byte = 0;
    EXPECT_FALSE(RecvExact(peerFd, &byte, 1, 20)) << "nothing was sent";
    close(peerFd);
    IpcClient unconnected;
    EXPECT_EQ(unconnected.Transact(request, reply, 50ms), IpcResult::NOT_CONNECTED);
    for (const std::string& address :
         {std::string("/nonexistent/kavo.sock"), std::string(200, 'x'), std::string(), SocketName("nobody")}) {
        EXPECT_FALSE(unconnected.Connect(address)) << address;
    }
}

}  // namespace
