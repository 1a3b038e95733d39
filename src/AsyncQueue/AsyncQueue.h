#pragma once

#include "AsyncQueue/IAsyncQueue.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

/// A task queue with a worker thread of its own, which runs from construction until stop().
class AsyncQueue : public IAsyncQueue {
public:
    enum class State : std::uint32_t {
        Initialising = 0, ///< posts are held back while the worker runs the initialiser tasks
        Processing = 1,   ///< the same, and what is held back follows when those are done
        Running = 2,
        Exiting = 3,
        Stopped = 4,
    };

    /// Throws std::system_error when no thread can be started. `registerThread` is handed to the
    /// ScopedThreadNotifications around each task.
    AsyncQueue(const std::string& name, bool registerThread);
    AsyncQueue(const AsyncQueue&) = delete;
    AsyncQueue& operator=(const AsyncQueue&) = delete;
    ~AsyncQueue() override;

    void post(const std::string& taskName, TaskFunction&& task, std::uint32_t position,
              std::uint32_t taskType) override;
    void cancelTasks(std::uint32_t taskType) override;
    void clear() override;
    bool hasPendingTasks() override;
    bool suspend(std::function<void()> callback) override;
    void resume() override;
    std::size_t pendingTaskCount() override;
    void stop() override;
    std::thread::id threadId() override;
    bool isQueueThread() override;
    bool isStopped() override;
    std::string currentTaskName() override;

    /// "initialising", "processing", "running", "exiting", "stopped"; empty for any other value.
    static std::string_view stateName(State state) noexcept;

private:
    friend class QueueWorker;
    struct Context;

    /// Shared with the worker, so that it outlives whichever lets go first.
    std::shared_ptr<Context> mContext;
};

} // namespace tarn
