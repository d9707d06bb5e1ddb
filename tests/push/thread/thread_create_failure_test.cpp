// Makes thread creation fail on demand: this executable's pthread_create comes before the C
// library's, so std::thread inside the library reaches it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include "kavo/push/thread/thread_pool.h"
#include "tests/push/thread/thread_test_util.h"

namespace {

std::atomic<int> createsBeforeFailure{-1};  // -1: never fail

}  // namespace

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attr, void* (*start)(void*), void* arg)
{
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const Create next = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    int left = createsBeforeFailure.load();
    if (left == 0) {
        return EAGAIN;
    }
    if (left > 0) {
        createsBeforeFailure.store(left - 1);
    }
    return next(thread, attr, start, arg);
}

namespace {

struct FailureCase {
    const char* name;
    unsigned long maxThreads;
    int createsBeforeFailure;
};

// The threads that did start are counted, so the pool neither stalls (count too high) nor
// wraps below zero when they end (count too low).
TEST(ThreadCreateFailureTest, TheErrorReachesTheCallerAndTheStartedThreadsAreCounted)
{
    const FailureCase cases[] = {
        {"no thread can be created", 3, 0},
        {"the second of three threads cannot be created", 3, 1},
        {"the last of four threads cannot be created", 4, 3},
    };
    for (const FailureCase& c : cases) {
        SCOPED_TRACE(c.name);
        KavoTest::ThreadTracker tracker;
        Kavo::Push::ThreadPool pool("fail", c.maxThreads, tracker.OnStart(), tracker.OnExit());
        std::atomic<int> ran{0};
        createsBeforeFailure.store(c.createsBeforeFailure);
        EXPECT_THROW(pool.AddTask([&ran] { ran.fetch_add(1); }), std::system_error);
        createsBeforeFailure.store(-1);
        ASSERT_TRUE(tracker.Quiet(c.createsBeforeFailure));
        EXPECT_EQ(ran.load(), c.createsBeforeFailure == 0 ? 0 : 1) << "the task stayed queued";
        EXPECT_TRUE(pool.AddTask([&ran] { ran.fetch_add(1); }));
        ASSERT_TRUE(tracker.Quiet(c.createsBeforeFailure + c.maxThreads));
        EXPECT_EQ(tracker.StartTids().size(), c.createsBeforeFailure + c.maxThreads)
            << "once the started threads ended, the next task brings the pool up to its maximum";
        EXPECT_EQ(ran.load(), 2);
    }
}

}  // namespace
