#include "kavo/host/ipc/ipc_channel.h"

#include <gtest/gtest.h>

#include <thread>

#include "kavo/host/ipc/ipc_server.h"
#include "tests/host/ipc/ipc_test_util.h"

namespace {

using namespace std::chrono_literals;
using IpcTest::Bytes;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::IpcServer;
using Kavo::Parcel;

constexpr int32_t UNTOUCHED = 0x5A5A5A5A;

Bytes DataOf(const Parcel& parcel)
{
    return Bytes(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
}

// The client facing a peer that answers with scripted bytes, read and written without the library.
class ClientAgainstScriptedPeer : public ::testing::Test {
protected:
    struct Script {
        Bytes answer;
        bool closeAfter;
    };

    IpcResult Run(const Script& script, Parcel& request, Parcel& reply, std::chrono::milliseconds deadline)
    {
        int clientFd = -1;
        int peerFd = -1;
        EXPECT_TRUE(Kavo::MakeIpcSocketPair(clientFd, peerFd));
        client_ = IpcClient(clientFd);
        std::thread peer([&] {
            uint8_t header[4];
            if (IpcTest::RecvExact(peerFd, header, 4, 2000)) {
                Bytes body(header[0] | (header[1] << 8) | (header[2] << 16));
                IpcTest::RecvExact(peerFd, body.data(), body.size(), 2000);
                received_ = body;
            }
            IpcTest::SendBytes(peerFd, script.answer);
            if (script.closeAfter) {
                close(peerFd);
            }
        });
        IpcResult result = client_.Transact(request, reply, deadline);
        peer.join();
        if (!script.closeAfter) {
            close(peerFd);
        }
        return result;
    }

    IpcClient client_;
    Bytes received_;
};

TEST_F(ClientAgainstScriptedPeer, EachReplyShapeGivesItsResultAndOnlyOkTouchesTheReply)
{
    struct Case {
        const char* name;
        Script script;
        size_t replyCapacity;
        IpcResult expected;
        bool connectedAfter;
    };
    const Bytes seven = {7, 0, 0, 0};
    constexpr IpcResult TOO_LARGE = IpcResult::FRAME_TOO_LARGE;
    Bytes cutReply = IpcTest::ReplyFrame(0, seven);
    cutReply.resize(cutReply.size() - 2);
    const Case cases[] = {
        {"an OK frame fills the reply", {IpcTest::ReplyFrame(0, seven), false}, 64, IpcResult::OK, true},
        {"a declined request keeps the connection", {IpcTest::ReplyFrame(1, {}), false}, 64, IpcResult::REFUSED, true},
        {"a peer that closes without a byte is gone", {{}, true}, 64, IpcResult::PEER_GONE, false},
        {"a stream that ends inside the length word", {{8, 0}, true}, 64, IpcResult::SHORT_FRAME, false},
        {"a stream that ends inside the reply bytes", {cutReply, true}, 64, IpcResult::SHORT_FRAME, false},
        {"a frame too short for its status word", {{2, 0, 0, 0, 0, 0}, false}, 64, IpcResult::SHORT_FRAME, false},
        {"a reply past the reply's capacity", {IpcTest::ReplyFrame(0, Bytes(20)), false}, 16, TOO_LARGE, false},
        {"a reply exactly at the reply's capacity",
         {IpcTest::ReplyFrame(0, Bytes(16)), false},
         16,
         IpcResult::OK,
         true},
        {"a status word no server sends", {IpcTest::ReplyFrame(99, {}), false}, 64, IpcResult::BAD_FRAME, false},
        {"a server naming its deadline", {IpcTest::ReplyFrame(3, {}), true}, 64, IpcResult::DEADLINE_PASSED, false},
        {"a silent peer outlives the deadline", {{}, false}, 64, IpcResult::DEADLINE_PASSED, false},
        {"half a frame then silence outlives the deadline", {cutReply, false}, 64, IpcResult::DEADLINE_PASSED, false},
    };
    for (const auto& c : cases) {
        Parcel request;
        request.WriteString("ping");
        Parcel reply;
        reply.WriteInt32(UNTOUCHED);
        reply.SetMaxCapacity(c.replyCapacity);
        EXPECT_EQ(Run(c.script, request, reply, 100ms), c.expected) << c.name;
        EXPECT_EQ(client_.IsConnected(), c.connectedAfter) << c.name;
        EXPECT_EQ(received_, DataOf(request)) << c.name;
        if (c.expected == IpcResult::OK) {
            EXPECT_EQ(reply.GetReadPosition(), 0u) << c.name;
            EXPECT_EQ(DataOf(reply), Bytes(c.script.answer.begin() + 8, c.script.answer.end())) << c.name;
        } else {
            EXPECT_EQ(reply.ReadInt32(), UNTOUCHED) << c.name;
        }
        EXPECT_EQ(client_.Transact(request, reply, 100ms),
                  c.connectedAfter ? IpcResult::PEER_GONE : IpcResult::NOT_CONNECTED)
            << c.name << ": the next transaction";
    }
}

TEST(ClientLimits, RequestsPastTheFrameSizeNeverLeaveTheClient)
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
    EXPECT_FALSE(IpcTest::RecvExact(peerFd, &byte, 1, 20)) << "nothing was sent";
    close(peerFd);

    IpcClient unconnected;
    EXPECT_EQ(unconnected.Transact(request, reply, 50ms), IpcResult::NOT_CONNECTED);
    EXPECT_FALSE(unconnected.Connect("/nonexistent/kavo.sock"));
    EXPECT_FALSE(unconnected.Connect(std::string(200, 'x')));
    EXPECT_FALSE(unconnected.Connect(""));
}

// A server with an echoing handler, reached through a path, an abstract name or a socket pair.
class ChannelRoundTrip : public ::testing::Test {
protected:
    static constexpr size_t MAX_FRAME = 8192;

    ChannelRoundTrip() : server_(Echo, Kavo::IpcServerOptions{2000ms, MAX_FRAME, 8}) {}

    static bool Echo(Parcel& request, Parcel& reply)
    {
        return reply.WriteBuffer(request.GetData(), request.GetDataSize());
    }

    IpcTest::SocketDir dir_;
    IpcServer server_;
};

TEST_F(ChannelRoundTrip, RequestsComeBackByteForByteOverEveryKindOfEndpoint)
{
    const std::string abstractName = "@kavo-ipc-test-" + std::to_string(getpid());
    ASSERT_TRUE(server_.Listen(dir_.Path("echo.sock")));
    int clientFd = -1;
    int serverFd = -1;
    ASSERT_TRUE(Kavo::MakeIpcSocketPair(clientFd, serverFd));
    ASSERT_TRUE(server_.Serve(serverFd));

    IpcClient byPath;
    ASSERT_TRUE(byPath.Connect(dir_.Path("echo.sock")));
    IpcClient byPair(clientFd);
    IpcServer abstractServer([](Parcel&, Parcel& reply) { return reply.WriteInt32(11); });
    ASSERT_TRUE(abstractServer.Listen(abstractName));
    IpcClient byName;
    ASSERT_TRUE(byName.Connect(abstractName));
    Parcel request;
    Parcel reply;
    EXPECT_EQ(byName.Transact(request, reply, 1000ms), IpcResult::OK);
    EXPECT_EQ(reply.ReadInt32(), 11);

    struct Case {
        const char* name;
        size_t size;
        IpcResult expected;
    };
    const Case cases[] = {
        {"an empty request", 0, IpcResult::OK},
        {"a typical request", 512, IpcResult::OK},
        {"a request of several reads", 4096, IpcResult::OK},
        {"a request exactly at the server's frame size", MAX_FRAME, IpcResult::OK},
        {"a request one word past the server's frame size", MAX_FRAME + 4, IpcResult::FRAME_TOO_LARGE},
    };
    for (IpcClient* client : {&byPath, &byPair}) {
        for (const auto& c : cases) {
            Bytes payload(c.size);
            for (size_t i = 0; i < payload.size(); ++i) {
                payload[i] = static_cast<uint8_t>(i * 7 + 1);
            }
            Parcel sent;
            sent.WriteBuffer(payload.data(), payload.size());
            Parcel echoed;
            ASSERT_EQ(client->Transact(sent, echoed, 2000ms), c.expected) << c.name;
            if (c.expected == IpcResult::OK) {
                EXPECT_EQ(DataOf(echoed), payload) << c.name;
            }
        }
        EXPECT_FALSE(client->IsConnected()) << "the refused frame closed the connection";
    }
    EXPECT_EQ(server_.GetCount(IpcResult::OK), 8u);
    EXPECT_EQ(server_.GetCount(IpcResult::FRAME_TOO_LARGE), 2u);
}

}  // namespace
