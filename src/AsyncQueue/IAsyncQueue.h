#pragma once

#include "AsyncQueue/TaskFunction.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>

namespace tarn {

/// Runs tasks one after another on one worker thread. Every operation may be called from any
/// thread; tasks and callbacks run, and dropped tasks are destroyed, outside every lock.
class IAsyncQueue {
public:
    virtual ~IAsyncQueue() = default;

    /// Queues a task: at the front with position 1, at the back otherwise. Silently dropped once
    /// stop() was asked for. `taskType` is the poster's own number, for cancelTasks.
    virtual void post(const std::string& taskName, TaskFunction&& task, std::uint32_t position,
                      std::uint32_t taskType) = 0;
    /// Drops every task of the type that has not started.
    virtual void cancelTasks(std::uint32_t taskType) = 0;
    virtual void clear() = 0;
    virtual bool hasPendingTasks() = 0;
    /// Asks the worker to take no more tasks. True when nothing was queued: suspended at once, and
    /// the callback is not called. False: with a callback, the worker suspends itself after its
    /// running task and calls it on its thread; without one, it suspends after its running task.
    virtual bool suspend(std::function<void()> callback) = 0;
    virtual void resume() = 0;
    virtual std::size_t pendingTaskCount() = 0;
    /// Runs what is queued and ends the worker; waits for that, so a suspended queue that holds
    /// tasks is to be resumed. Called by a task of the queue itself, it detaches the worker, which
    /// then stays parked for the rest of the process's life.
    virtual void stop() = 0;
    virtual std::thread::id threadId() = 0;
    virtual bool isQueueThread() = 0;
    virtual bool isStopped() = 0;
    /// Name of the task that runs now; empty between tasks.
    virtual std::string currentTaskName() = 0;
};

} // namespace tarn
