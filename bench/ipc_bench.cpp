// Cost of one channel transaction against the bare socket pair doing the same exchange: an
// IpcClient sends a request of N bytes to an IpcServer that echoes it back, and a plain client
// sends the same N bytes over a socket pair to a thread that echoes them. Both run over a socket
// pair in one process, one outstanding request at a time. items_per_second is transactions per
// second; the p50/p99 counters are round trips in microseconds. Read each pair as a ratio.
#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

#include "kavo/host/ipc/ipc_channel.h"
#include "kavo/host/ipc/ipc_server.h"

namespace {

using Clock = std::chrono::steady_clock;

bool SendAll(int fd, const uint8_t* data, size_t size)
{
    while (size > 0) {
        ssize_t n = send(fd, data, size, MSG_NOSIGNAL);
        if (n <= 0) {
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

bool RecvAll(int fd, uint8_t* data, size_t size)
{
    while (size > 0) {
        ssize_t n = recv(fd, data, size, 0);
        if (n <= 0) {
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

std::vector<uint8_t> Payload(size_t size)
{
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i * 31 + 7);
    }
    return bytes;
}

// Records each round trip and publishes the rate and the median and tail latency.
class RoundTrips {
public:
    void Add(Clock::duration d) { samples_.push_back(std::chrono::duration<double, std::micro>(d).count()); }
    void Publish(benchmark::State& state, size_t bytes)
    {
        state.SetItemsProcessed(state.iterations());
        state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(2 * bytes));
        if (samples_.empty()) {
            return;
        }
        std::sort(samples_.begin(), samples_.end());
        state.counters["p50_us"] = samples_[samples_.size() / 2];
        state.counters["p99_us"] = samples_[samples_.size() * 99 / 100];
    }

private:
    std::vector<double> samples_;
};

void BM_IpcTransactEcho(benchmark::State& state)
{
    const size_t size = static_cast<size_t>(state.range(0));
    int clientFd = -1;
    int serverFd = -1;
    if (!Kavo::MakeIpcSocketPair(clientFd, serverFd)) {
        state.SkipWithError("socketpair failed");
        return;
    }
    Kavo::IpcServer server([](Kavo::Parcel& request, Kavo::Parcel& reply) {
        return reply.WriteBuffer(request.GetData(), request.GetDataSize());
    });
    server.Serve(serverFd);
    Kavo::IpcClient client(clientFd);
    const std::vector<uint8_t> payload = Payload(size);
    Kavo::Parcel request;
    request.WriteBuffer(payload.data(), payload.size());
    Kavo::Parcel reply;
    RoundTrips trips;
    for (auto _ : state) {
        auto start = Clock::now();
        if (client.Transact(request, reply, std::chrono::milliseconds(5000)) != Kavo::IpcResult::OK) {
            state.SkipWithError("transaction failed");
            break;
        }
        trips.Add(Clock::now() - start);
        benchmark::DoNotOptimize(reply.GetData());
    }
    trips.Publish(state, size);
    client.Close();
    server.Stop();
}
BENCHMARK(BM_IpcTransactEcho)->Arg(256)->Arg(1024)->Arg(4096)->UseRealTime();

void BM_SocketPairEcho(benchmark::State& state)
{
    const size_t size = static_cast<size_t>(state.range(0));
    int fds[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0) {
        state.SkipWithError("socketpair failed");
        return;
    }
    std::thread echo([fd = fds[1], size] {
        std::vector<uint8_t> buffer(size);
        while (RecvAll(fd, buffer.data(), size) && SendAll(fd, buffer.data(), size)) {
        }
    });
    const std::vector<uint8_t> payload = Payload(size);
    std::vector<uint8_t> back(size);
    RoundTrips trips;
    for (auto _ : state) {
        auto start = Clock::now();
        if (!SendAll(fds[0], payload.data(), size) || !RecvAll(fds[0], back.data(), size)) {
            state.SkipWithError("echo failed");
            break;
        }
        trips.Add(Clock::now() - start);
        benchmark::DoNotOptimize(back.data());
    }
    trips.Publish(state, size);
    shutdown(fds[0], SHUT_RDWR);
    echo.join();
    close(fds[0]);
    close(fds[1]);
}
BENCHMARK(BM_SocketPairEcho)->Arg(256)->Arg(1024)->Arg(4096)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
