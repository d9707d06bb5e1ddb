// ThreadPool: a named handle on a PushThreadWorker. Tasks added through it run on the worker's
// detached threads. Destroying the pool only lets go of the worker: threads still running keep
// it alive and drain the queue first. Thread-safe: AddTask may be called from any thread.
//
//   ThreadPool pool("push_report", 2, nullptr, nullptr);
//   pool.AddTask([event] { Send(event); });
#ifndef KAVO_PUSH_THREAD_THREAD_POOL_H
#define KAVO_PUSH_THREAD_THREAD_POOL_H

#include <functional>
#include <memory>
#include <string>

#include "kavo/push/common/push_export.h"
#include "kavo/push/thread/push_thread_worker.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT ThreadPool {
public:
    // Empty monitors are not registered.
    ThreadPool(std::string const& name, unsigned long const& maxThreadNum,
               PushThreadWorkerInterface::StartMonitor const& onStart,
               PushThreadWorkerInterface::ExitMonitor const& onExit);
    virtual ~ThreadPool() = default;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    std::string GetThreadName();
    // Queues the task on the pool's worker; false when the worker refuses it.
    bool AddTask(std::function<void()>&& task);
    // Replaces the hooks around every task of every pool of the process; set them before tasks run.
    static void SetExecCallBack(std::function<void(std::string const&)> before,
                                std::function<void(std::string const&)> after);

private:
    std::shared_ptr<PushThreadWorkerInterface> worker_;
    std::string name_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_THREAD_THREAD_POOL_H
