#include "kavo/push/thread/thread_pool.h"

#include <utility>

namespace Kavo::Push {

ThreadPool::ThreadPool(std::string const& name, unsigned long const& maxThreadNum,
                       PushThreadWorkerInterface::StartMonitor const& onStart,
                       PushThreadWorkerInterface::ExitMonitor const& onExit)
    : worker_(std::make_shared<PushThreadWorker>(name, 0, maxThreadNum)), name_(name)
{
    if (onStart) {
        worker_->RegisterThreadMonitor(onStart);
    }
    if (onExit) {
        worker_->UnRegisterThreadMonitor(onExit);
    }
}

std::string ThreadPool::GetThreadName()
{
    return name_;
}

bool ThreadPool::AddTask(std::function<void()>&& task)
{
    return worker_->InsertTask(std::move(task));
}

void ThreadPool::SetExecCallBack(std::function<void(std::string const&)> before,
                                 std::function<void(std::string const&)> after)
{
    PushThreadWorker::SetExecCallBack(before, after);
}

}  // namespace Kavo::Push
