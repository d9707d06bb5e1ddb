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
using IpcTest::Frame;
using Kavo::IpcResult;
using Kavo::Parcel;

constexpr uint32_t MAX_FRAME = 64 * 1024;
constexpr int FRAMES = 3000;
constexpr uint32_t OK = 1u << static_cast<int>(IpcResult::OK);
constexpr uint32_t REFUSED = 1u << static_cast<int>(IpcResult::REFUSED);

// A request as the push service would send one: an operation, a bundle name, parameters, a count.
bool HandleStructured(Parcel& request, Parcel& reply)
{
    std::string bundle;
    if (request.ReadInt32() != 1 || !request.ReadString(bundle)) {
        return false;
    }
    Kavo::sptr<Kavo::AAFwk::WantParams> params = request.ReadStrongParcelable<Kavo::AAFwk::WantParams>();
    int32_t count = 0;
    return params != nullptr && request.ReadInt32(count) && reply.WriteString(bundle) &&
           reply.WriteInt32(static_cast<int32_t>(params->Size()) + count);
}

Parcel RealRequest()
{
    Kavo::AAFwk::WantParams nested;
    nested.SetParam("channel", "default");
    Kavo::AAFwk::WantParams params;
    params.SetParam("title", "New message");
    params.SetParam("sent", int64_t{1700000000000});
    params.SetParam("extra", nested);
    Parcel parcel;
    parcel.WriteInt32(1);
    parcel.WriteString("com.example.push");
    parcel.WriteParcelable(&params);
    parcel.WriteInt32(2);
    return parcel;
}

struct Findings {
    int32_t mismatches = 0;
    int32_t firstMismatch = -1;
    int32_t observed[8] = {};
};

// One hostile frame, whether the stream ends after it, and the answers allowed (a bit per result).
struct Attack {
    Bytes bytes;
    bool endStream;
    uint32_t allowed;
};

Attack MakeAttack(std::mt19937& rng, const Bytes& real, int index)
{
    auto below = [&rng](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(rng); };
    const Bytes prefix(real.begin(), real.begin() + static_cast<long>(below(real.size())));
    const uint32_t fullLength = static_cast<uint32_t>(real.size());
    if (index % 300 == 299) {  // part of a frame, then silence past the server's deadline
        return {Frame(fullLength, prefix), false, 1u << static_cast<int>(IpcResult::DEADLINE_PASSED)};
    }
    Bytes changed = below(2) == 0 ? real : Bytes(below(512));  // a real parcel mutated, or noise
    for (size_t n = changed == real ? 1 + below(4) : changed.size(); n > 0; --n) {
        changed[below(changed.size())] = static_cast<uint8_t>(rng());
    }
    uint32_t tooLarge = MAX_FRAME + 1 + static_cast<uint32_t>(rng() % (0xFFFFFFFFu - MAX_FRAME));
    switch (below(6)) {
        case 0:
            return {Frame(fullLength, real), false, OK};
        case 1:  // a valid prefix of a real parcel, framed as what it is
            return {Frame(static_cast<uint32_t>(prefix.size()), prefix), false, REFUSED};
        case 2:
            return {Frame(static_cast<uint32_t>(changed.size()), changed), false, OK | REFUSED};
        case 3:
            return {Frame(tooLarge, prefix), false, 1u << static_cast<int>(IpcResult::FRAME_TOO_LARGE)};
        case 4:  // the stream ends inside the parcel
            return {Frame(fullLength, prefix), true, 1u << static_cast<int>(IpcResult::SHORT_FRAME)};
        default:  // the stream ends inside the length word
            return {Bytes(real.begin(), real.begin() + 1 + static_cast<long>(below(3))), true,
                    1u << static_cast<int>(IpcResult::SHORT_FRAME)};
    }
}

// The child's side: every frame gets one answer whose status is allowed for it; an answer that
// closes the connection is followed by the end of the stream, and the child connects again.
void Flood(const std::string& name, int out)
{
    std::mt19937 rng(20261122);
    Parcel parcel = RealRequest();
    const Bytes real(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
    Findings findings;
    int fd = -1;
    for (int i = 0; i < FRAMES; ++i) {
        fd = fd >= 0 ? fd : IpcTest::ConnectRaw(name);
        Attack attack = MakeAttack(rng, real, i);
        bool sent = IpcTest::SendBytes(fd, attack.bytes);
        if (attack.endStream) {
            shutdown(fd, SHUT_WR);
        }
        IpcTest::Answer answer = IpcTest::ReadAnswer(fd, 5000);
        bool known = answer.framed && answer.status < 8;
        if (known) {
            ++findings.observed[answer.status];
        }
        bool allowed = sent && known && (attack.allowed & (1u << answer.status)) != 0;
        if (!known || answer.status > static_cast<uint32_t>(IpcResult::REFUSED) || attack.endStream) {
            allowed = allowed && IpcTest::PeerClosed(fd, 5000);
            close(fd);
            fd = -1;
        }
        if (!allowed && findings.mismatches++ == 0) {
            findings.firstMismatch = i;
        }
    }
    close(fd);
    (void)!write(out, &findings, sizeof(findings));
}

TEST(HostilePeer, FloodOfBrokenFramesIsAnsweredFrameByFrameAndLeavesNothingBehind)
{
    const std::string name = IpcTest::SocketName("hostile");
    IpcTest::ForkedPeer child([&](int out) { Flood(name, out); });
    const size_t fdsBefore = IpcTest::OpenFdCount();
    const size_t threadsBefore = IpcTest::ThreadBaseline();
    Kavo::IpcServer server(HandleStructured, Kavo::IpcServerOptions{50ms, MAX_FRAME});
    ASSERT_TRUE(server.Listen(name));
    std::atomic<bool> flooding{true};
    int goodAnswers = 0;
    int goodFailures = 0;
    auto behave = [&](int atMost) {  // a well-behaved client on a connection of its own
        Kavo::IpcClient client;
        client.Connect(name);
        for (int i = 0; i < atMost && flooding.load(); ++i) {
            Parcel request = RealRequest();
            Parcel reply;
            bool good =
                client.Transact(request, reply, 2000ms) == IpcResult::OK && reply.ReadString() == "com.example.push";
            ++(good ? goodAnswers : goodFailures);
            std::this_thread::sleep_for(200us);
        }
    };
    behave(50);  // warms the allocator up before the heap is measured
    server.WaitUntilIdle();
    const size_t heapBefore = mallinfo2().uordblks;

    child.Go();
    std::thread wellBehaved(behave, 100000);
    Findings findings;
    bool reported = child.Read(&findings, sizeof(findings), 120000);
    flooding = false;
    wellBehaved.join();
    ASSERT_TRUE(reported) << "the child finished its flood";
    EXPECT_EQ(findings.mismatches, 0) << "first at frame " << findings.firstMismatch;
    EXPECT_EQ(goodFailures, 0);
    server.WaitUntilIdle();
    uint64_t counted = 0;
    for (int result = 0; result < 8; ++result) {
        uint64_t good = result == 0 ? static_cast<uint64_t>(goodAnswers) : 0;
        counted += server.GetCount(static_cast<IpcResult>(result));
        EXPECT_EQ(server.GetCount(static_cast<IpcResult>(result)), findings.observed[result] + good)
            << Kavo::IpcResultName(static_cast<IpcResult>(result));
    }
    EXPECT_EQ(counted, FRAMES + static_cast<uint64_t>(goodAnswers)) << "one count per transaction";
    EXPECT_GT(findings.observed[static_cast<int>(IpcResult::DEADLINE_PASSED)], 0);
    EXPECT_LT(mallinfo2().uordblks, heapBefore + 256 * 1024) << "heap in use, bytes";
    server.Stop();
    EXPECT_TRUE(IpcTest::Eventually([&] { return IpcTest::ThreadCount() == threadsBefore; }));
    EXPECT_EQ(IpcTest::OpenFdCount(), fdsBefore);
}

}  // namespace
