#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "kavo/push/thread/thread_pool.h"
#include "tests/push/thread/thread_test_util.h"

#if defined(__SANITIZE_THREAD__)
#define KAVO_STRESS_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KAVO_STRESS_TSAN 1
#endif
#endif

namespace {

using namespace std::chrono_literals;

// A million tasks, also under AddressSanitizer (about a second); ThreadSanitizer tracks every
// lock and runs a tenth of them. KAVO_STRESS_TASKS overrides both.
size_t StressTaskCount()
{
    if (const char* env = std::getenv("KAVO_STRESS_TASKS")) {
        return std::strtoul(env, nullptr, 10);
    }
#ifdef KAVO_STRESS_TSAN
    return 100000;
#else
    return 1000000;
#endif
}

struct StressCase {
    const char* name;
    std::vector<unsigned long> poolSizes;
    int producers;
};

TEST(ThreadPoolStressTest, EveryTaskRunsExactlyOnceAndNoThreadOutlivesTheWork)
{
    const StressCase cases[] = {
        {"four pools of 1 to 4 threads fed by four producers", {1, 2, 3, 4}, 4},
        {"two pools of 8 threads fed by three producers", {8, 8}, 3},
    };
    for (const StressCase& c : cases) {
        SCOPED_TRACE(c.name);
        const size_t baseline = KavoTest::LiveThreadCount();
        const size_t total = StressTaskCount() / 2;
        std::vector<std::atomic<unsigned char>> runs(total);
        std::atomic<size_t> done{0};
        std::atomic<size_t> refused{0};
        KavoTest::ThreadTracker tracker;
        std::vector<std::unique_ptr<Kavo::Push::ThreadPool>> pools;
        for (size_t i = 0; i < c.poolSizes.size(); ++i) {
            pools.push_back(std::make_unique<Kavo::Push::ThreadPool>("stress" + std::to_string(i), c.poolSizes[i],
                                                                     tracker.OnStart(), tracker.OnExit()));
        }
        std::vector<std::thread> producers;
        for (int p = 0; p < c.producers; ++p) {
            producers.emplace_back([&, p] {
                for (size_t i = p; i < total; i += c.producers) {
                    auto task = [&runs, &done, i] {
                        runs[i].fetch_add(1, std::memory_order_relaxed);
                        done.fetch_add(1, std::memory_order_release);
                    };
                    if (!pools[i % pools.size()]->AddTask(task)) {
                        refused.fetch_add(1);
                    }
                }
            });
        }
        for (std::thread& producer : producers) {
            producer.join();
        }
        auto deadline = std::chrono::steady_clock::now() + 120s;
        while (done.load(std::memory_order_acquire) < total && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(1ms);
        }
        pools.clear();
        ASSERT_TRUE(tracker.Quiet());
        EXPECT_TRUE(KavoTest::WaitForThreadCount(baseline)) << "a worker thread outlived the work";
        EXPECT_EQ(refused.load(), 0u);
        EXPECT_EQ(done.load(), total);
        size_t wrong = 0;
        for (const auto& count : runs) {
            wrong += count.load(std::memory_order_relaxed) == 1 ? 0 : 1;
        }
        EXPECT_EQ(wrong, 0u) << "tasks run other than exactly once";
    }
}

}  // namespace
