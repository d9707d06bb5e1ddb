// Thread pool throughput: 100,000 tasks that only count themselves, through pools of 1, 4 and
// 8 threads, beside one thread running the same tasks in a loop. Latency from insert to the
// task's start, on an idle pool (its threads have ended, so one must start) and on a pool
// whose thread is kept busy by a task that queues itself again.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "kavo/push/thread/thread_pool.h"

namespace {

using Kavo::Push::ThreadPool;
using Clock = std::chrono::steady_clock;

constexpr int TASKS = 100000;

void WaitFor(const std::atomic<int>& counter, int value)
{
    while (counter.load(std::memory_order_acquire) < value) {
        std::this_thread::yield();
    }
}

void BM_PoolThroughput(benchmark::State& state)
{
    ThreadPool pool("bench_pool", static_cast<unsigned long>(state.range(0)), nullptr, nullptr);
    std::atomic<int> done{0};
    for (auto _ : state) {
        done.store(0);
        for (int i = 0; i < TASKS; ++i) {
            pool.AddTask([&done] { done.fetch_add(1, std::memory_order_release); });
        }
        WaitFor(done, TASKS);
    }
    state.SetItemsProcessed(state.iterations() * TASKS);
}
BENCHMARK(BM_PoolThroughput)->Arg(1)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_OneThreadLoop(benchmark::State& state)
{
    std::atomic<int> done{0};
    std::vector<std::function<void()>> tasks;
    for (auto _ : state) {
        done.store(0);
        tasks.clear();
        for (int i = 0; i < TASKS; ++i) {
            tasks.emplace_back([&done] { done.fetch_add(1, std::memory_order_release); });
        }
        for (auto& task : tasks) {
            task();
        }
        WaitFor(done, TASKS);
    }
    state.SetItemsProcessed(state.iterations() * TASKS);
}
BENCHMARK(BM_OneThreadLoop)->Unit(benchmark::kMillisecond)->UseRealTime();

// Idle pool: every insert finds no thread and starts one.
void BM_InsertToStartIdle(benchmark::State& state)
{
    std::mutex mutex;
    int live = 0;
    auto onStart = [&](auto const&, std::string const&, int) {
        std::lock_guard<std::mutex> lock(mutex);
        ++live;
    };
    auto onExit = [&](std::string const&, int) {
        std::lock_guard<std::mutex> lock(mutex);
        --live;
    };
    ThreadPool pool("bench_idle", 1, onStart, onExit);
    for (auto _ : state) {
        std::atomic<int> started{0};
        Clock::time_point begin = Clock::now();
        Clock::time_point at;
        pool.AddTask([&] {
            at = Clock::now();
            started.store(1, std::memory_order_release);
        });
        WaitFor(started, 1);
        state.SetIterationTime(std::chrono::duration<double>(at - begin).count());
        for (;;) {  // let the thread end so the next insert finds the pool idle again
            std::lock_guard<std::mutex> lock(mutex);
            if (live == 0) {
                break;
            }
        }
    }
}
BENCHMARK(BM_InsertToStartIdle)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Busy pool: a task that queues itself again keeps one of the two threads alive.
void BM_InsertToStartBusy(benchmark::State& state)
{
    ThreadPool pool("bench_busy", 2, nullptr, nullptr);
    std::atomic<bool> stop{false};
    std::atomic<int> keepers{0};
    std::function<void()> keeper = [&] {
        if (!stop.load(std::memory_order_acquire)) {
            std::this_thread::yield();
            pool.AddTask(std::function<void()>(keeper));
        } else {
            keepers.fetch_add(1, std::memory_order_release);
        }
    };
    pool.AddTask(std::function<void()>(keeper));
    for (auto _ : state) {
        std::atomic<int> started{0};
        Clock::time_point begin = Clock::now();
        Clock::time_point at;
        pool.AddTask([&] {
            at = Clock::now();
            started.store(1, std::memory_order_release);
        });
        WaitFor(started, 1);
        state.SetIterationTime(std::chrono::duration<double>(at - begin).count());
    }
    stop.store(true, std::memory_order_release);
    WaitFor(keepers, 1);
}
BENCHMARK(BM_InsertToStartBusy)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
