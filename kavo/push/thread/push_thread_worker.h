// PushThreadWorker: a named queue of tasks drained by detached threads that start on demand, up
// to a maximum, and end at their first look at an empty queue. Optional monitors observe
// threads starting and ending; process-wide hooks run before and after every task.
// Thread-safe: tasks may be inserted from any thread. The worker must be owned by a
// std::shared_ptr (its threads share that ownership), and the process-wide hooks must be set
// before tasks run.
#ifndef KAVO_PUSH_THREAD_PUSH_THREAD_WORKER_H
#define KAVO_PUSH_THREAD_PUSH_THREAD_WORKER_H

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushThreadWorkerInterface {
public:
    using StartMonitor =
        std::function<void(std::shared_ptr<PushThreadWorkerInterface> const&, std::string const&, int)>;
    using ExitMonitor = std::function<void(std::string const&, int)>;

    virtual ~PushThreadWorkerInterface() = default;
    // Queues the task and makes sure threads run it; false (task dropped) once stopped.
    virtual bool InsertTask(std::function<void()>&& task) = 0;
    // Called on each new thread before its first task, with the worker, its name and the tid.
    virtual void RegisterThreadMonitor(StartMonitor const& onStart) = 0;
    // Called on each thread that ends, with the name and the tid.
    virtual void UnRegisterThreadMonitor(ExitMonitor const& onExit) = 0;
    // Tasks run so far by the live thread `tid`; 0 for a thread that ended or never was.
    virtual unsigned long GetTaskExecNum(int tid) = 0;
};

class KAVO_PUSH_EXPORT PushThreadWorker : public PushThreadWorkerInterface,
                                          public std::enable_shared_from_this<PushThreadWorker> {
public:
    using TaskHook = std::function<void(std::string const&)>;

    // `coreThreadNum` is kept for callers that pass it and plays no part in scheduling.
    PushThreadWorker(std::string const& name, unsigned long coreThreadNum, unsigned long maxThreadNum);
    // Refuses further tasks and discards the queued ones. Runs once the last owner and the
    // last thread have let go, so no thread is left by then.
    ~PushThreadWorker() override;
    PushThreadWorker(const PushThreadWorker&) = delete;
    PushThreadWorker& operator=(const PushThreadWorker&) = delete;

    // A thread that cannot be created lets the system error reach the caller; the task stays
    // queued and the threads that did start are counted. Whatever a task throws (an empty
    // task throws std::bad_function_call) is not caught and ends the process.
    bool InsertTask(std::function<void()>&& task) override;
    void RegisterThreadMonitor(StartMonitor const& onStart) override;
    void UnRegisterThreadMonitor(ExitMonitor const& onExit) override;
    unsigned long GetTaskExecNum(int tid) override;

    // Replaces the hooks run around every task of every worker of the process, called with
    // the worker's name. Not synchronised: set them before any task runs.
    static void SetExecCallBack(TaskHook const& before, TaskHook const& after);

private:
    unsigned long TryIncWorker();
    unsigned long TaskWorker();
    void ExecuteThreadMonitor(int tid);
    bool PopTask2Execute(std::function<void()>& task);
    void SetTaskExecNum(int tid, unsigned long count);
    void ClearTaskExecNum(int tid);

    // Detached threads may run tasks while the process exits, so the hooks are never destroyed.
    static TaskHook& BeforeTaskHook();
    static TaskHook& AfterTaskHook();

    [[maybe_unused]] const unsigned long coreThreadNum_;
    const unsigned long maxThreadNum_;
    const std::string name_;
    std::mutex queueMutex_;
    std::deque<std::function<void()>> tasks_;
    bool stopped_ = false;
    unsigned long curThreadNum_ = 0;
    StartMonitor onStart_;
    ExitMonitor onExit_;
    std::mutex counterMutex_;
    std::map<int, unsigned long> taskExecNum_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_THREAD_PUSH_THREAD_WORKER_H
