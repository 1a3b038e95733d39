#pragma once

#include "AsyncQueue/QueueContext.h"
#include "AsyncQueue/TaskScope.h"

#include <memory>
#include <mutex>
#include <string>

namespace tarn {

/// The loop on a queue's thread.
class QueueWorker {
public:
    explicit QueueWorker(std::shared_ptr<AsyncQueue::Context> context);

    /// Until the queue is exiting and has no tasks left, or a task throws
    /// AsyncQueueDestroyedException.
    void run();

private:
    using Lock = std::unique_lock<std::mutex>;

    void suspendSelf(Lock& lock);
    void callSuspensionCallback(const std::function<void()>& callback);
    /// Lets what was held back during the initialiser phase follow.
    void swapQueues(Lock& lock);
    /// Runs what is queued until a suspension is due. False when the worker has to end. `lock` is
    /// held again otherwise.
    bool runTasks(Lock& lock);
    bool callTask(TaskFunction& task, const std::string& taskName);
    void describeWhenDetached();
    /// Looks for work a while longer, then waits.
    void idle(Lock& lock);

    std::shared_ptr<AsyncQueue::Context> mContext;
    const std::string mName;
    TaskScope mScope;
    bool mMayLook = false; ///< for more work, before it sleeps
};

} // namespace tarn
