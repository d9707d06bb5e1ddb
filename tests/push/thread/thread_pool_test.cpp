// This executable's pthread_create comes before the C library's, so a test can make thread
// creation inside the library fail.
#include "kavo/push/thread/thread_pool.h"

#include "kavo/host/sysevent/sys_event.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/event/push_event_report.h"
#include "kavo/push/event/teldric_helper.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <future>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

static std::atomic<int> g_createsBeforeFailure{-1};  // -1: never fail

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attr, void* (*start)(void*), void* arg)
{
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const Create next = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    int left = g_createsBeforeFailure.load();
    if (left > 0) {
        g_createsBeforeFailure.store(left - 1);
    }
    return left == 0 ? EAGAIN : next(thread, attr, start, arg);
}

namespace {

#if defined(__SANITIZE_THREAD__) || defined(KAVO_TEST_EMULATOR)
// ThreadSanitizer tracks every lock and an emulator slows every task: races need interleavings, not volume
constexpr size_t STRESS_TASKS = 20000;
#else
constexpr size_t STRESS_TASKS = 1000000;
#endif

using namespace Kavo::Push;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

template <typename Done>
bool WaitUntil(Done done, std::chrono::seconds timeout = 30s)
{
    for (auto deadline = Clock::now() + timeout; !done() && Clock::now() < deadline;) {
        std::this_thread::sleep_for(1ms);
    }
    return done();
}

// Threads of this process. The first call starts and joins one thread, so helper threads that a
// runtime starts with the first thread (ThreadSanitizer has one) are in every baseline.
size_t LiveThreadCount()
{
    [[maybe_unused]] static const bool warmedUp = [] {
        pid_t tid = 0;
        std::thread([&tid] { tid = gettid(); }).join();
        // An emulator may return from join() before the thread has left the kernel's list.
        return WaitUntil([tid] { return !std::filesystem::exists("/proc/self/task/" + std::to_string(tid)); });
    }();
    std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<size_t>(std::distance(begin(tasks), end(tasks)));
}

// Records what a pool's monitors report. It outlives the threads it watches: going out of scope
// waits until the process is back to the threads it had (detached threads leave the kernel's list
// a moment after their last callback).
class ThreadTracker {
public:
    struct Seen {
        std::vector<int> starts, exits;
        std::vector<std::string> names;
        std::weak_ptr<PushThreadWorkerInterface> worker;
    };
    ~ThreadTracker()
    {
        WaitUntil([this] { return LiveThreadCount() == baseline_; });
    }
    std::unique_ptr<ThreadPool> Pool(const std::string& name, unsigned long maxThreads)
    {
        auto onStart = [this](std::shared_ptr<PushThreadWorkerInterface> const& worker, std::string const& poolName,
                              int tid) {
            std::lock_guard<std::mutex> lock(mutex_);
            seen_.worker = worker, seen_.starts.push_back(tid), seen_.names.push_back(poolName);
        };
        auto onExit = [this](std::string const& poolName, int tid) {
            std::lock_guard<std::mutex> lock(mutex_);
            seen_.exits.push_back(tid), seen_.names.push_back(poolName);
        };
        return std::make_unique<ThreadPool>(name, maxThreads, onStart, onExit);
    }
    // Waits until at least `starts` threads started and every one of them ended and left the
    // process: once every insert has returned, every task inserted has run.
    bool Quiet(size_t starts = 0)
    {
        return WaitUntil([&] {
            Seen seen = Get();
            return seen.starts.size() >= starts && seen.exits.size() == seen.starts.size() &&
                   LiveThreadCount() == baseline_;
        });
    }
    Seen Get()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return seen_;
    }

private:
    const size_t baseline_ = LiveThreadCount();
    std::mutex mutex_;
    Seen seen_;
};

struct Gate {
    std::promise<void> opener;
    std::shared_future<void> opened = opener.get_future().share();
    std::atomic<int> waiting{0};
    void Wait() { waiting.fetch_add(1), opened.wait(); }
};

TEST(ThreadPoolTest, ThreadsStartOnDemandUpToTheMaximumCarryingThePoolName)
{
    struct Case {
        const char* name;
        unsigned long maxThreads;
        size_t rounds, starts;  // rounds of one task each, every round waiting until every thread ended
    };
    const Case cases[] = {
        {"maximum 0 queues the task and starts no thread", 0, 1, 0},
        {"one task brings a pool of four straight up to four threads", 4, 1, 4},
        {"a task after every thread ended starts the threads again", 2, 2, 4},
    };
    const std::string poolName = "push_notification_sender";
    for (const Case& c : cases) {
        ThreadTracker tracker;
        auto pool = tracker.Pool(poolName, c.maxThreads);
        std::mutex mutex;
        std::vector<std::pair<int, std::string>> runs;  // thread id and kernel name of each task run
        for (size_t round = 1; round <= c.rounds; ++round) {
            EXPECT_TRUE(pool->AddTask([&] {
                char osName[32] = {0};
                prctl(PR_GET_NAME, osName, 0, 0, 0);
                std::lock_guard<std::mutex> lock(mutex);
                runs.emplace_back(gettid(), osName);
            }));
            ASSERT_TRUE(tracker.Quiet(round * c.maxThreads)) << c.name;
        }
        std::this_thread::sleep_for(c.starts == 0 ? 50ms : 0ms);
        std::lock_guard<std::mutex> lock(mutex);
        auto seen = tracker.Get();
        EXPECT_EQ(seen.starts.size(), c.starts) << c.name;
        EXPECT_EQ(seen.names, std::vector<std::string>(2 * c.starts, poolName)) << c.name;
        EXPECT_EQ(runs.size(), c.starts == 0 ? 0 : c.rounds) << c.name;
        for (const auto& [tid, osName] : runs) {
            EXPECT_NE(std::find(seen.starts.begin(), seen.starts.end(), tid), seen.starts.end()) << c.name;
            EXPECT_EQ(osName, "push_notificati") << c.name << ": the kernel keeps 15 characters";
        }
    }
}

TEST(ThreadPoolTest, OneThreadRunsItsQueueInOrderCountingTasksWhileItLives)
{
    ThreadTracker tracker;
    auto pool = tracker.Pool("fifo", 1);
    Gate gate;
    std::vector<std::pair<int, unsigned long>> runs;  // task number and the thread's count as it ran
    pool->AddTask([&] { gate.Wait(); });
    for (int i = 0; i < 50; ++i) {
        pool->AddTask([&, i] { runs.emplace_back(i, tracker.Get().worker.lock()->GetTaskExecNum(gettid())); });
    }
    ASSERT_TRUE(WaitUntil([&] { return gate.waiting == 1; }));
    auto seen = tracker.Get();
    auto worker = seen.worker.lock();
    ASSERT_NE(worker, nullptr);
    EXPECT_EQ(worker->GetTaskExecNum(seen.starts.at(0)), 1u) << "the count rises before the task runs";
    EXPECT_EQ(worker->GetTaskExecNum(gettid()), 0u) << "a thread that never ran a task";
    gate.opener.set_value();
    ASSERT_TRUE(tracker.Quiet(1));
    ASSERT_EQ(runs.size(), 50u);
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(runs[i], std::make_pair(i, i + 2ul));
    }
    EXPECT_EQ(worker->GetTaskExecNum(seen.starts.at(0)), 0u) << "a thread that ended";
}

TEST(ThreadPoolTest, HooksWrapEveryTaskWithThePoolNameUntilCleared)
{
    std::mutex mutex;
    std::vector<std::string> events;
    auto record = [&](const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
    };
    ThreadPool::SetExecCallBack([&](std::string const& name) { record("before " + name); },
                                [&](std::string const& name) { record("after " + name); });
    for (const char* name : {"hooked", "plain"}) {
        ThreadTracker tracker;
        auto pool = tracker.Pool(name, 1);
        pool->AddTask([&] { record("task"); });
        pool->AddTask([&] { record("task"); });
        ASSERT_TRUE(tracker.Quiet(1));
        ThreadPool::SetExecCallBack(nullptr, nullptr);
    }
    EXPECT_EQ(events, (std::vector<std::string>{"before hooked", "task", "after hooked", "before hooked", "task",
                                                "after hooked", "task", "task"}));
}

TEST(ThreadPoolTest, APoolDestroyedWhileItsTasksRunLetsThemAndTheQueueFinish)
{
    ThreadTracker tracker;
    auto pool = tracker.Pool("orphan", 2);
    Gate gate;
    std::atomic<int> finished{0};
    for (int i = 0; i < 22; ++i) {
        pool->AddTask([&] { gate.Wait(), finished.fetch_add(1); });  // two threads: two tasks wait
    }
    ASSERT_TRUE(WaitUntil([&] { return gate.waiting == 2; }));
    std::weak_ptr<PushThreadWorkerInterface> worker = tracker.Get().worker;
    pool.reset();
    EXPECT_FALSE(worker.expired()) << "running threads keep the worker";
    gate.opener.set_value();
    ASSERT_TRUE(tracker.Quiet(2));
    EXPECT_EQ(finished.load(), 22);
    EXPECT_TRUE(worker.expired()) << "the last thread let the worker go";
}

TEST(ThreadPoolTest, QueuedTasksAreDiscardedAndInsertsRefusedOnceDestructionHasBegun)
{
    std::atomic<int> result{-1};
    auto worker = std::make_shared<PushThreadWorker>("refuse", 0, 0);
    // Captured state that inserts a task when it goes, as a task's captures may do.
    std::shared_ptr<void> state(nullptr, [&result, w = worker.get()](void*) { result = w->InsertTask([] {}); });
    std::weak_ptr<void> queued = state;
    EXPECT_TRUE(worker->InsertTask([state] {}));
    state.reset();
    worker.reset();
    EXPECT_EQ(result.load(), 0) << "the task discarded by the destructor could not queue another";
    EXPECT_TRUE(queued.expired()) << "queued tasks are discarded, not leaked";
}

// The threads that did start are counted, so the pool neither stalls (count too high) nor wraps
// below zero when they end (count too low).
TEST(ThreadPoolTest, AThreadThatCannotBeCreatedThrowsAndOnlyTheStartedOnesAreCounted)
{
    const std::pair<unsigned long, int> cases[] = {{3, 0}, {3, 1}, {4, 3}};  // maximum, creations that succeed
    for (const auto& [maxThreads, creations] : cases) {
        ThreadTracker tracker;
        auto pool = tracker.Pool("fail", maxThreads);
        std::atomic<int> ran{0};
        g_createsBeforeFailure.store(creations);
        EXPECT_THROW(pool->AddTask([&ran] { ran.fetch_add(1); }), std::system_error);
        g_createsBeforeFailure.store(-1);
        ASSERT_TRUE(tracker.Quiet(creations));
        EXPECT_EQ(ran.load(), creations == 0 ? 0 : 1) << creations << ": the task stayed queued";
        EXPECT_TRUE(pool->AddTask([&ran] { ran.fetch_add(1); }));
        ASSERT_TRUE(tracker.Quiet(creations + maxThreads));
        EXPECT_EQ(tracker.Get().starts.size(), creations + maxThreads) << "the next task starts the maximum again";
        EXPECT_EQ(ran.load(), 2);
    }
}

TEST(ThreadPoolTest, EveryTaskOfAStressRunRunsExactlyOnce)
{
    const size_t total = STRESS_TASKS / 2;
    const std::pair<std::vector<unsigned long>, size_t> cases[] = {{{1, 2, 3, 4}, 4}, {{8, 8}, 3}};
    for (const auto& [poolSizes, producers] : cases) {
        std::vector<std::atomic<unsigned char>> runs(total);
        ThreadTracker tracker;
        std::vector<std::unique_ptr<ThreadPool>> pools;
        for (size_t i = 0; i < poolSizes.size(); ++i) {
            pools.push_back(tracker.Pool("stress" + std::to_string(i), poolSizes[i]));
        }
        std::vector<std::thread> feeders;
        for (size_t p = 0; p < producers; ++p) {
            feeders.emplace_back([&, p, step = producers] {
                for (size_t i = p; i < total; i += step) {
                    auto task = [&runs, i] { runs[i].fetch_add(1); };
                    EXPECT_TRUE(pools[i % pools.size()]->AddTask(task));
                }
            });
        }
        for (std::thread& feeder : feeders) {
            feeder.join();
        }
        pools.clear();  // the threads drain the queues first
        ASSERT_TRUE(tracker.Quiet()) << "a worker thread outlived the work";
        EXPECT_EQ(std::count_if(runs.begin(), runs.end(), [](auto& n) { return n.load() != 1; }), 0)
            << "tasks run other than exactly once";
    }
}

// Detached threads still run while the process exits and its static objects are destroyed: the
// task hooks, the log tag, the event catalogue and recorders and the analytics hooks they reach
// must still be there. The hooks own heap state, so ASan sees a hook that was destroyed.
TEST(ThreadPoolDeathTest, ExitWhileFourWorkersRunTasks)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto busy = [] {
        auto calls = std::make_shared<std::atomic<long>>(0);
        auto count = [calls](std::string const&) { calls->fetch_add(1); };
        ThreadPool::SetExecCallBack(count, count);
        TeldricHelper::SetReportException([calls](PushInnerError const&, std::string const&) { calls->fetch_add(1); });
        Kavo::SysEventRecorder recorder;
        ThreadPool pool("exiting", 4, nullptr, nullptr);
        // Each task queues the next one, so the four workers are busy until the process ends.
        std::atomic<long> runs{0};
        std::function<void()> task = [&] {
            if (runs.fetch_add(1) % 64 == 0) {
                PUSH_LOGD("exiting task %{public}d", 1);
                TeldricHelper::AsyncReportCommonException(INNER_ERR_DATA_CONVERT_FAILED, "exiting %{public}d", 1);
                PushEventReport::SendEvent(PushEvent::START_EXTENSION, PushEventInfo("push", "b", "a", 100, 0));
            }
            pool.AddTask(std::function<void()>(task));
        };
        for (int i = 0; i < 8; ++i) {
            pool.AddTask(std::function<void()>(task));
        }
        WaitUntil([&] { return calls->load() > 1000; });
        std::exit(0);
    };
    // Forked without re-executing the test binary, which an emulator cannot load by itself.
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(busy(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
