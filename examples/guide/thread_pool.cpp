// The thread pool: tasks queued from the service's threads run on the pool's detached threads,
// with process-wide hooks around each.
#include <atomic>
#include <condition_variable>
#include <mutex>

#include <kavo/push/thread/thread_pool.h>

#include "show.h"

using namespace Kavo::Push;

namespace {

// The pool's threads may still be leaving a hook when main returns, so what they touch lives
// as long as the process.
std::atomic<int> g_started{0};
std::mutex g_mutex;
std::condition_variable g_finished;
int g_done = 0;

}  // namespace

int main()
{
    // guide: pool
    ThreadPool::SetExecCallBack([](std::string const&) { ++g_started; },  // set before any task runs
                                [](std::string const&) {
                                    std::lock_guard<std::mutex> lock(g_mutex);
                                    ++g_done;
                                    g_finished.notify_all();
                                });
    ThreadPool pool("push_report", 2, nullptr, nullptr);  // at most 2 threads, started on demand
    std::atomic<int> sum{0};
    for (int i = 1; i <= 10; ++i) {
        pool.AddTask([&sum, i] { sum += i; });
    }
    std::unique_lock<std::mutex> lock(g_mutex);
    g_finished.wait(lock, [] { return g_done == 10; });
    Guide::Show("pool name", pool.GetThreadName(), "push_report");
    Guide::Show("sum of the tasks", sum.load(), 55);
    Guide::Show("hooks run", std::to_string(g_started.load()) + " before, " + std::to_string(g_done) + " after",
                "10 before, 10 after");
    // end guide
    return Guide::ExitStatus();
}
