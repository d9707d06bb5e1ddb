#include "kavo/host/ipc/ipc_server.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>
#include <tuple>
#include <utility>

#include "tests/host/ipc/channel_fixture.h"

namespace {

using namespace KavoTest::Ipc;

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

}  // namespace
