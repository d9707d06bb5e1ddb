#include "kavo/push/thread/thread_pool.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "tests/push/thread/thread_test_util.h"

namespace {

using Kavo::Push::PushThreadWorker;
using Kavo::Push::ThreadPool;
using KavoTest::Gate;
using KavoTest::ThreadTracker;
using namespace std::chrono_literals;

// Every test ends with no worker thread left, so the next one starts from the same count.
class ThreadPoolTest : public testing::Test {
protected:
    void SetUp() override { baseline_ = KavoTest::LiveThreadCount(); }
    void TearDown() override { EXPECT_TRUE(KavoTest::WaitForThreadCount(baseline_)); }

    std::unique_ptr<ThreadPool> MakePool(const std::string& name, unsigned long maxThreads)
    {
        return std::make_unique<ThreadPool>(name, maxThreads, tracker_.OnStart(), tracker_.OnExit());
    }

    size_t baseline_ = 0;
    ThreadTracker tracker_;
};

struct LifecycleCase {
    const char* name;
    unsigned long maxThreads;
    std::vector<int> rounds;  // tasks inserted per round; each round waits until every thread ended
    size_t starts;
};

TEST_F(ThreadPoolTest, ThreadsStartOnDemandUpToTheMaximumAndEndOnAnEmptyQueue)
{
    const LifecycleCase cases[] = {
        {"maximum 0 queues the task and starts no thread", 0, {1}, 0},
        {"one task brings a pool of four straight up to four threads", 4, {1}, 4},
        {"a task after every thread ended starts the threads again", 2, {1, 1}, 4},
    };
    for (const LifecycleCase& c : cases) {
        SCOPED_TRACE(c.name);
        ThreadTracker tracker;
        ThreadPool pool("lifecycle", c.maxThreads, tracker.OnStart(), tracker.OnExit());
        std::mutex mutex;
        std::vector<int> runnerTids;
        size_t inserted = 0;
        size_t idleStarts = 0;
        for (int round : c.rounds) {
            for (int i = 0; i < round; ++i) {
                EXPECT_TRUE(pool.AddTask([&] {
                    std::lock_guard<std::mutex> lock(mutex);
                    runnerTids.push_back(KavoTest::CurrentTid());
                }));
            }
            inserted += round;
            idleStarts += c.maxThreads;
            ASSERT_TRUE(tracker.Quiet(idleStarts));
        }
        std::this_thread::sleep_for(c.starts == 0 ? 50ms : 0ms);
        std::lock_guard<std::mutex> lock(mutex);
        EXPECT_EQ(tracker.StartTids().size(), c.starts);
        EXPECT_EQ(runnerTids.size(), c.starts == 0 ? 0 : inserted);
        std::vector<int> starts = tracker.StartTids();
        std::vector<int> exits = tracker.ExitTids();
        EXPECT_EQ(std::set<int>(starts.begin(), starts.end()), std::set<int>(exits.begin(), exits.end()));
        for (int tid : runnerTids) {
            EXPECT_NE(std::find(starts.begin(), starts.end(), tid), starts.end());
        }
        for (const std::string& name : tracker.Names()) {
            EXPECT_EQ(name, "lifecycle");
        }
    }
}

TEST_F(ThreadPoolTest, OneThreadRunsItsQueueFirstInFirstOut)
{
    auto pool = MakePool("fifo", 1);
    Gate gate;
    std::vector<int> order;
    pool->AddTask([&] { gate.Wait(); });
    for (int i = 0; i < 100; ++i) {
        pool->AddTask([&order, i] { order.push_back(i); });
    }
    gate.Open();
    ASSERT_TRUE(tracker_.Quiet(1));
    std::vector<int> expected(100);
    for (int i = 0; i < 100; ++i) {
        expected[i] = i;
    }
    EXPECT_EQ(order, expected);
    EXPECT_EQ(tracker_.StartTids().size(), 1u);
}

struct NameCase {
    const char* name;
    const char* poolName;
    const char* osName;
};

TEST_F(ThreadPoolTest, WorkerThreadsCarryThePoolName)
{
    const NameCase cases[] = {
        {"a short name is the thread's name", "push_report", "push_report"},
        {"a long name keeps its first 15 characters", "push_notification_sender", "push_notificati"},
    };
    for (const NameCase& c : cases) {
        SCOPED_TRACE(c.name);
        ThreadTracker tracker;
        ThreadPool pool(c.poolName, 1, tracker.OnStart(), tracker.OnExit());
        EXPECT_EQ(pool.GetThreadName(), c.poolName);
        char osName[32] = {0};
        pool.AddTask([&osName] { prctl(PR_GET_NAME, osName, 0, 0, 0); });
        ASSERT_TRUE(tracker.Quiet(1));
        EXPECT_STREQ(osName, c.osName);
    }
}

TEST_F(ThreadPoolTest, CountsTasksPerLiveThreadAndForgetsEndedThreads)
{
    auto pool = MakePool("counter", 1);
    Gate gate;
    std::vector<unsigned long> seen;
    pool->AddTask([&] { gate.Wait(); });
    for (int i = 0; i < 2; ++i) {
        pool->AddTask([&] { seen.push_back(tracker_.Worker()->GetTaskExecNum(KavoTest::CurrentTid())); });
    }
    ASSERT_TRUE(gate.WaitForWaiters(1));
    auto worker = tracker_.Worker();
    ASSERT_NE(worker, nullptr);
    const int tid = tracker_.StartTids().at(0);
    EXPECT_EQ(worker->GetTaskExecNum(tid), 1u) << "the count rises before the task runs";
    EXPECT_EQ(worker->GetTaskExecNum(KavoTest::CurrentTid()), 0u) << "a thread that never ran a task";
    gate.Open();
    ASSERT_TRUE(tracker_.Quiet(1));
    EXPECT_EQ(seen, (std::vector<unsigned long>{2, 3}));
    EXPECT_EQ(worker->GetTaskExecNum(tid), 0u) << "a thread that ended";
    EXPECT_EQ(tracker_.ExitTids(), (std::vector<int>{tid}));
}

TEST_F(ThreadPoolTest, HooksWrapEveryTaskOfEveryPoolWithItsName)
{
    std::mutex mutex;
    std::map<std::string, std::vector<std::string>> events;
    auto record = [&](const std::string& pool, const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events[pool].push_back(event);
    };
    ThreadPool::SetExecCallBack([&](std::string const& name) { record(name, "before"); },
                                [&](std::string const& name) { record(name, "after"); });
    {
        ThreadTracker tracker;
        ThreadPool first("first", 1, tracker.OnStart(), tracker.OnExit());
        ThreadPool second("second", 1, tracker.OnStart(), tracker.OnExit());
        for (int i = 0; i < 2; ++i) {
            first.AddTask([&] { record("first", "task"); });
            second.AddTask([&] { record("second", "task"); });
        }
        ASSERT_TRUE(tracker.Quiet(2));
    }
    ThreadPool::SetExecCallBack(nullptr, nullptr);
    const std::vector<std::string> wrapped = {"before", "task", "after", "before", "task", "after"};
    EXPECT_EQ(events["first"], wrapped);
    EXPECT_EQ(events["second"], wrapped);

    ThreadTracker tracker;
    ThreadPool plain("plain", 1, tracker.OnStart(), tracker.OnExit());
    plain.AddTask([&] { record("plain", "task"); });
    ASSERT_TRUE(tracker.Quiet(1));
    EXPECT_EQ(events["plain"], (std::vector<std::string>{"task"})) << "cleared hooks are not called";
}

TEST_F(ThreadPoolTest, APoolDestroyedWhileItsTasksRunLetsThemAndTheQueueFinish)
{
    auto pool = MakePool("orphan", 2);
    Gate gate;
    std::atomic<int> finished{0};
    for (int i = 0; i < 2; ++i) {
        pool->AddTask([&] {
            gate.Wait();
            finished.fetch_add(1);
        });
    }
    for (int i = 0; i < 20; ++i) {
        pool->AddTask([&] { finished.fetch_add(1); });
    }
    ASSERT_TRUE(gate.WaitForWaiters(2));
    std::weak_ptr<Kavo::Push::PushThreadWorkerInterface> worker = tracker_.Worker();
    pool.reset();
    EXPECT_FALSE(worker.expired()) << "running threads keep the worker";
    gate.Open();
    ASSERT_TRUE(tracker_.Quiet(2));
    EXPECT_EQ(finished.load(), 22);
    EXPECT_TRUE(KavoTest::WaitForThreadCount(baseline_));
    EXPECT_TRUE(worker.expired()) << "the last thread let the worker go";
}

// Calls InsertTask on the worker when destroyed, as a task's captured state may do.
struct Reinserter {
    PushThreadWorker* worker;
    std::atomic<int>* result;
    ~Reinserter() { result->store(worker->InsertTask([] {}) ? 1 : 0); }
};

TEST_F(ThreadPoolTest, InsertTaskIsRefusedOnceDestructionHasBegun)
{
    std::atomic<int> result{-1};
    std::weak_ptr<int> queuedState;
    {
        auto worker = std::make_shared<PushThreadWorker>("refuse", 0, 0);
        auto state = std::make_shared<int>(0);
        queuedState = state;
        auto reinserter = std::make_shared<Reinserter>(Reinserter{worker.get(), &result});
        EXPECT_TRUE(worker->InsertTask([reinserter, state] {}));
    }
    EXPECT_EQ(result.load(), 0) << "the task discarded by the destructor could not queue another";
    EXPECT_TRUE(queuedState.expired()) << "queued tasks are discarded, not leaked";
}

}  // namespace
