#include "kavo/push/thread/push_thread_worker.h"

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <thread>
#include <utility>

namespace Kavo::Push {

namespace {

int CurrentTid()
{
    return static_cast<int>(syscall(SYS_gettid));
}

}  // namespace

PushThreadWorker::TaskHook& PushThreadWorker::BeforeTaskHook()
{
    static TaskHook& hook = *new TaskHook;
    return hook;
}

PushThreadWorker::TaskHook& PushThreadWorker::AfterTaskHook()
{
    static TaskHook& hook = *new TaskHook;
    return hook;
}

PushThreadWorker::PushThreadWorker(std::string const& name, unsigned long coreThreadNum, unsigned long maxThreadNum)
    : coreThreadNum_(coreThreadNum), maxThreadNum_(maxThreadNum), name_(name)
{
}

PushThreadWorker::~PushThreadWorker()
{
    std::deque<std::function<void()>> discarded;
    {
        std::lock_guard<std::mutex> lock(queueMutex_);
        stopped_ = true;
        discarded.swap(tasks_);
    }
    // The discarded tasks are destroyed here, while every member still lives: whatever they
    // captured may still call InsertTask, which now refuses.
    discarded.clear();
}

bool PushThreadWorker::InsertTask(std::function<void()>&& task)
{
    std::lock_guard<std::mutex> lock(queueMutex_);
    if (stopped_) {
        return false;
    }
    tasks_.push_back(std::move(task));
    TryIncWorker();
    return true;
}

void PushThreadWorker::RegisterThreadMonitor(StartMonitor const& onStart)
{
    std::lock_guard<std::mutex> lock(queueMutex_);
    onStart_ = onStart;
}

void PushThreadWorker::UnRegisterThreadMonitor(ExitMonitor const& onExit)
{
    std::lock_guard<std::mutex> lock(queueMutex_);
    onExit_ = onExit;
}

unsigned long PushThreadWorker::GetTaskExecNum(int tid)
{
    std::lock_guard<std::mutex> lock(counterMutex_);
    return taskExecNum_[tid];
}

void PushThreadWorker::SetExecCallBack(TaskHook const& before, TaskHook const& after)
{
    BeforeTaskHook() = before;
    AfterTaskHook() = after;
}

// Called with the queue mutex held. The first task brings the pool straight up to its maximum.
unsigned long PushThreadWorker::TryIncWorker()
{
    if (curThreadNum_ >= maxThreadNum_) {
        curThreadNum_ = maxThreadNum_;
        return 0;
    }
    unsigned long started = 0;
    try {
        while (curThreadNum_ + started < maxThreadNum_) {
            std::thread(&PushThreadWorker::TaskWorker, shared_from_this()).detach();
            ++started;
        }
    } catch (...) {
        curThreadNum_ += started;
        throw;
    }
    curThreadNum_ = maxThreadNum_;
    return started;
}

unsigned long PushThreadWorker::TaskWorker()
{
    // The kernel keeps the first 15 characters of the name.
    prctl(PR_SET_NAME, name_.c_str(), 0, 0, 0);
    const int tid = CurrentTid();
    ExecuteThreadMonitor(tid);
    unsigned long executed = 0;
    for (;;) {
        std::function<void()> task;
        ExitMonitor onExit;
        bool taken = false;
        {
            std::lock_guard<std::mutex> lock(queueMutex_);
            taken = PopTask2Execute(task);
            if (!taken) {
                // The count drops together with the empty look, so a task inserted from now
                // on starts a thread of its own.
                --curThreadNum_;
                onExit = onExit_;
            }
        }
        if (!taken) {
            ClearTaskExecNum(tid);
            if (onExit) {
                onExit(name_, tid);
            }
            return executed;
        }
        SetTaskExecNum(tid, ++executed);
        if (const TaskHook& before = BeforeTaskHook()) {
            before(name_);
        }
        task();  // a task without target throws std::bad_function_call, which is not caught
        if (const TaskHook& after = AfterTaskHook()) {
            after(name_);
        }
    }
}

void PushThreadWorker::ExecuteThreadMonitor(int tid)
{
    StartMonitor onStart;
    {
        std::lock_guard<std::mutex> lock(queueMutex_);
        onStart = onStart_;
    }
    if (onStart) {
        onStart(shared_from_this(), name_, tid);
    }
}

bool PushThreadWorker::PopTask2Execute(std::function<void()>& task)
{
    if (tasks_.empty()) {
        return false;
    }
    task = std::move(tasks_.front());
    tasks_.pop_front();
    return true;
}

void PushThreadWorker::SetTaskExecNum(int tid, unsigned long count)
{
    std::lock_guard<std::mutex> lock(counterMutex_);
    taskExecNum_[tid] = count;
}

void PushThreadWorker::ClearTaskExecNum(int tid)
{
    std::lock_guard<std::mutex> lock(counterMutex_);
    taskExecNum_.erase(tid);
}

}  // namespace Kavo::Push
