// A child process floods the server with random, mutated and cut frames while a well-behaved
// client keeps transacting; the server must answer or refuse each one with its reason.
#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <random>
#include <thread>

#include "kavo/host/ipc/ipc_server.h"
#include "kavo/host/want/want_params.h"
#include "tests/host/ipc/ipc_test_util.h"

namespace {

using namespace std::chrono_literals;
using IpcTest::Bytes;
using Kavo::IpcClient;
using Kavo::IpcResult;
using Kavo::IpcServer;
using Kavo::Parcel;

constexpr size_t MAX_FRAME = 64 * 1024;
constexpr int FRAMES = 3000;
constexpr int RESULT_KINDS = 8;

// A request as the push service would send one: an operation, a bundle name, parameters, a count.
bool HandleStructured(Parcel& request, Parcel& reply)
{
    int32_t op = 0;
    std::string bundle;
    if (!request.ReadInt32(op) || op != 1 || !request.ReadString(bundle)) {
        return false;
    }
    Kavo::sptr<Kavo::AAFwk::WantParams> params = request.ReadStrongParcelable<Kavo::AAFwk::WantParams>();
    int32_t count = 0;
    if (params == nullptr || !request.ReadInt32(count)) {
        return false;
    }
    return reply.WriteString(bundle) && reply.WriteInt32(static_cast<int32_t>(params->Size()) + count);
}

Bytes RealRequest()
{
    Kavo::AAFwk::WantParams nested;
    nested.SetParam("channel", "default");
    Kavo::AAFwk::WantParams params;
    params.SetParam("title", "New message");
    params.SetParam("badge", int32_t{3});
    params.SetParam("sent", int64_t{1700000000000});
    params.SetParam("extra", nested);
    Parcel parcel;
    parcel.WriteInt32(1);
    parcel.WriteString("com.example.push");
    parcel.WriteParcelable(&params);
    parcel.WriteInt32(2);
    return Bytes(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
}

struct Findings {
    int32_t sent = 0;
    int32_t mismatches = 0;
    int32_t firstMismatch = -1;
    int32_t observed[RESULT_KINDS] = {};
};

// One hostile frame: the bytes, whether the stream then ends, and the answers allowed for it.
struct Attack {
    Bytes bytes;
    bool endStream = false;
    uint32_t allowed = 0;  // bit per IpcResult
};

constexpr uint32_t Bit(IpcResult result)
{
    return 1u << static_cast<int>(result);
}

Attack MakeAttack(std::mt19937& rng, const Bytes& real, int index)
{
    auto below = [&rng](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(rng); };
    Bytes prefix(real.begin(), real.begin() + static_cast<long>(below(real.size())));
    if (index % 300 == 299) {  // a frame that stops and waits, past the server's deadline
        return {IpcTest::RequestFrame(static_cast<uint32_t>(real.size()), prefix), false,
                Bit(IpcResult::DEADLINE_PASSED)};
    }
    switch (below(7)) {
        case 0:
            return {IpcTest::RequestFrame(real), false, Bit(IpcResult::OK)};
        case 1:  // a valid prefix of a real parcel, framed as what it is
            return {IpcTest::RequestFrame(prefix), false, Bit(IpcResult::REFUSED)};
        case 2: {  // a real parcel with a few bytes changed
            Bytes mutated = real;
            for (size_t n = 1 + below(4); n > 0; --n) {
                mutated[below(mutated.size())] = static_cast<uint8_t>(rng());
            }
            return {IpcTest::RequestFrame(mutated), false, Bit(IpcResult::OK) | Bit(IpcResult::REFUSED)};
        }
        case 3: {
            Bytes noise(below(512));
            for (auto& byte : noise) {
                byte = static_cast<uint8_t>(rng());
            }
            return {IpcTest::RequestFrame(noise), false, Bit(IpcResult::OK) | Bit(IpcResult::REFUSED)};
        }
        case 4: {  // a length word past the maximum, followed by whatever
            uint32_t word = MAX_FRAME + 1 + static_cast<uint32_t>(rng() % (0xFFFFFFFFu - MAX_FRAME));
            return {IpcTest::RequestFrame(word, prefix), false, Bit(IpcResult::FRAME_TOO_LARGE)};
        }
        case 5:  // the full length word, part of the parcel, then the end of the stream
            return {IpcTest::RequestFrame(static_cast<uint32_t>(real.size()), prefix), true,
                    Bit(IpcResult::SHORT_FRAME)};
        default:  // the end of the stream inside the length word
            return {Bytes(real.begin(), real.begin() + 1 + static_cast<long>(below(3))), true,
                    Bit(IpcResult::SHORT_FRAME)};
    }
}

// The child's side: every frame gets one answer whose status is allowed for it; a refusal that
// closes the connection is followed by the end of the stream, and the child connects again.
void Flood(const std::string& path, int out)
{
    std::mt19937 rng(20261122);
    const Bytes real = RealRequest();
    Findings findings;
    int fd = -1;
    for (int i = 0; i < FRAMES; ++i) {
        fd = fd >= 0 ? fd : IpcTest::ConnectTo(path);
        Attack attack = MakeAttack(rng, real, i);
        bool sent = IpcTest::SendBytes(fd, attack.bytes);
        if (attack.endStream) {
            shutdown(fd, SHUT_WR);
        }
        IpcTest::Answer answer = IpcTest::ReadAnswer(fd, 5000);
        ++findings.sent;
        bool allowed =
            sent && answer.framed && answer.status < RESULT_KINDS && (attack.allowed & (1u << answer.status));
        if (answer.framed && answer.status < RESULT_KINDS) {
            ++findings.observed[answer.status];
        }
        bool closing = !answer.framed || answer.status > static_cast<uint32_t>(IpcResult::REFUSED);
        if (closing || attack.endStream) {
            allowed = allowed && IpcTest::PeerClosed(fd, 5000);
            close(fd);
            fd = -1;
        }
        if (!allowed && findings.mismatches++ == 0) {
            findings.firstMismatch = i;
        }
    }
    if (fd >= 0) {
        close(fd);
    }
    (void)!write(out, &findings, sizeof(findings));
}

size_t HeapInUse()
{
    return mallinfo2().uordblks;
}

TEST(HostilePeer, FloodOfBrokenFramesIsAnsweredFrameByFrameAndLeavesNothingBehind)
{
    IpcTest::SocketDir dir;
    const std::string path = dir.Path("hostile.sock");
    IpcTest::ChildPeer child([&](int out) { Flood(path, out); });

    const size_t fdsBefore = IpcTest::OpenFdCount();
    const size_t threadsBefore = IpcTest::ThreadBaseline();
    IpcServer server(HandleStructured, Kavo::IpcServerOptions{50ms, MAX_FRAME, 16});
    ASSERT_TRUE(server.Listen(path));
    std::atomic<bool> flooding{true};
    std::atomic<int> goodAnswers{0};
    std::atomic<int> goodFailures{0};
    // Warm up the allocator with the same work before the heap is measured.
    IpcClient warm;
    ASSERT_TRUE(warm.Connect(path));
    const Bytes real = RealRequest();
    for (int i = 0; i < 50; ++i) {
        Parcel request;
        request.ParseFrom(real.data(), real.size());
        Parcel reply;
        ASSERT_EQ(warm.Transact(request, reply, 1000ms), IpcResult::OK);
    }
    warm.Close();
    server.WaitUntilIdle();
    const size_t heapBefore = HeapInUse();

    child.Go();
    std::thread wellBehaved([&] {
        IpcClient client;
        client.Connect(path);
        for (int i = 0; i < 100000 && flooding.load(); ++i) {
            std::this_thread::sleep_for(200us);
            Parcel request;
            request.ParseFrom(real.data(), real.size());
            Parcel reply;
            IpcResult result = client.Transact(request, reply, 2000ms);
            (result == IpcResult::OK && reply.ReadString() == "com.example.push" ? goodAnswers : goodFailures)++;
        }
    });
    Findings findings;
    bool reported = child.Read(&findings, sizeof(findings), 120000);
    flooding = false;
    wellBehaved.join();
    ASSERT_TRUE(reported) << "the child finished its flood";

    EXPECT_EQ(findings.sent, FRAMES);
    EXPECT_EQ(findings.mismatches, 0) << "first at frame " << findings.firstMismatch;
    EXPECT_EQ(goodFailures.load(), 0);
    EXPECT_GT(goodAnswers.load(), 0);
    server.WaitUntilIdle();
    for (int result = 0; result < RESULT_KINDS; ++result) {
        uint64_t good = result == 0 ? static_cast<uint64_t>(goodAnswers.load()) + 50 : 0;
        EXPECT_EQ(server.GetCount(static_cast<IpcResult>(result)), findings.observed[result] + good)
            << Kavo::IpcResultName(static_cast<IpcResult>(result));
    }
    EXPECT_GT(findings.observed[static_cast<int>(IpcResult::DEADLINE_PASSED)], 0);
    EXPECT_LT(HeapInUse(), heapBefore + 256 * 1024) << "heap in use grew by " << HeapInUse() - heapBefore;
    server.Stop();
    EXPECT_TRUE(IpcTest::Eventually([&] { return IpcTest::ThreadCount() == threadsBefore; }));
    EXPECT_EQ(IpcTest::OpenFdCount(), fdsBefore);
}

}  // namespace
