// Observers for the thread pool suites: a tracker fed by the pool's monitors, and the
// process's live thread count, so a test can wait until every worker thread has ended.
#ifndef KAVO_TESTS_PUSH_THREAD_THREAD_TEST_UTIL_H
#define KAVO_TESTS_PUSH_THREAD_THREAD_TEST_UTIL_H

#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "kavo/push/thread/push_thread_worker.h"

namespace KavoTest {

using namespace std::chrono_literals;

inline int CurrentTid()
{
    return static_cast<int>(syscall(SYS_gettid));
}

// Threads of this process, as the kernel lists them. The first call starts and joins one
// thread, so helper threads that a runtime starts with the first thread (ThreadSanitizer has
// one) are already counted in any baseline.
inline size_t LiveThreadCount()
{
    static const bool warmedUp = (std::thread([] {}).join(), true);
    (void)warmedUp;
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        (void)entry;
        ++count;
    }
    return count;
}

// Polls until the process is back to `count` threads. Detached threads leave the kernel's
// list a moment after their last callback.
inline bool WaitForThreadCount(size_t count, std::chrono::milliseconds timeout = 10s)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (LiveThreadCount() != count) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

// Records what the monitors report. It outlives the threads it watches: going out of scope
// waits until the process is back to the threads it had when the tracker was made.
class ThreadTracker {
public:
    ThreadTracker() : baseline_(LiveThreadCount()) {}
    ~ThreadTracker() { WaitForThreadCount(baseline_); }
    ThreadTracker(const ThreadTracker&) = delete;
    ThreadTracker& operator=(const ThreadTracker&) = delete;

    Kavo::Push::PushThreadWorkerInterface::StartMonitor OnStart()
    {
        return [this](std::shared_ptr<Kavo::Push::PushThreadWorkerInterface> const& worker, std::string const& name,
                      int tid) {
            std::lock_guard<std::mutex> lock(mutex_);
            worker_ = worker;
            startTids_.push_back(tid);
            names_.push_back(name);
            changed_.notify_all();
        };
    }

    Kavo::Push::PushThreadWorkerInterface::ExitMonitor OnExit()
    {
        return [this](std::string const& name, int tid) {
            std::lock_guard<std::mutex> lock(mutex_);
            exitTids_.push_back(tid);
            names_.push_back(name);
            changed_.notify_all();  // under the lock: the tracker may go as soon as it is released
        };
    }

    // Waits until at least `starts` threads started, every started thread has ended, and no
    // thread created since is still on its way to its start. Once every insert has returned,
    // this means every task inserted has run.
    bool Quiet(size_t starts = 0, std::chrono::milliseconds timeout = 30s)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        bool ended = changed_.wait_for(lock, timeout, [&] {
            return startTids_.size() >= starts && exitTids_.size() == startTids_.size();
        });
        lock.unlock();
        return ended && WaitForThreadCount(baseline_, timeout);
    }

    std::vector<int> StartTids() const { return Locked(startTids_); }
    std::vector<int> ExitTids() const { return Locked(exitTids_); }
    std::vector<std::string> Names() const { return Locked(names_); }
    std::shared_ptr<Kavo::Push::PushThreadWorkerInterface> Worker() const
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return worker_.lock();
    }

private:
    template <typename T>
    T Locked(const T& field) const
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return field;
    }

    const size_t baseline_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::weak_ptr<Kavo::Push::PushThreadWorkerInterface> worker_;
    std::vector<int> startTids_;
    std::vector<int> exitTids_;
    std::vector<std::string> names_;
};

// A gate tasks wait at until the test opens it.
class Gate {
public:
    void Wait()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        ++waiting_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return open_; });
    }
    bool WaitForWaiters(int n, std::chrono::milliseconds timeout = 10s)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, [&] { return waiting_ >= n; });
    }
    void Open()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int waiting_ = 0;
    bool open_ = false;
};

}  // namespace KavoTest

#endif  // KAVO_TESTS_PUSH_THREAD_THREAD_TEST_UTIL_H
