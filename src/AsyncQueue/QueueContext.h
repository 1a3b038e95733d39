#pragma once

#include "AsyncQueue/AsyncQueue.h"
#include "AsyncQueue/RingDeque.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace tarn {

struct QueuedTask {
    TaskFunction task;
    std::uint32_t type = 0;
    std::string name;
};

/// What a queue and its worker share. Lock order: mMutex before mTaskNameMutex.
struct AsyncQueue::Context {
    using Queue = RingDeque<QueuedTask>;

    std::mutex mMutex; ///< both queues, mHasFinishedFunc, changes of mSuspended, mIsWorkerWaiting
    std::mutex mTaskNameMutex; ///< mCurrentTaskName alone
    std::string mName;
    std::string mCurrentTaskName;
    bool mRegisterThread = true;
    std::condition_variable mCondition;
    Queue mQueue;
    Queue mPendingQueue; ///< posts of the initialiser phase
    std::thread mThread;
    std::atomic<State> mState{State::Running};
    std::atomic<bool> mSuspended{false};
    bool mDetached = false;                 ///< set and read on the worker's thread only
    std::function<void()> mHasFinishedFunc; ///< a suspension that waits for the running task

    /// Set by the worker before its first task: mThread itself is still being stored then.
    std::atomic<std::thread::id> mThreadId{};
    bool mIsWorkerWaiting = false;            ///< spares a wake-up that nobody waits for
    std::atomic<std::uint32_t> mWakeCount{0}; ///< tells a worker that looks for work of some

    Context() = default;
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;
    ~Context() {
        if (mThread.joinable()) {
            mThread.detach(); // joining failed before; it must not end the program now
        }
    }

    bool isInitialiserPhase() const {
        const State state = mState.load();
        return state == State::Initialising || state == State::Processing;
    }
    /// Takes mMutex, which nobody holds for long, rather by trying than by a system call.
    std::unique_lock<std::mutex> lockShortly() {
        constexpr int kTries = 40;
        std::unique_lock lock(mMutex, std::defer_lock);
        for (int tries = 0; tries < kTries; ++tries) {
            if (lock.try_lock()) {
                return lock;
            }
        }
        lock.lock();
        return lock;
    }
    /// The queue that posts go to. With mMutex held.
    Queue& target() { return isInitialiserPhase() ? mPendingQueue : mQueue; }

    /// With mMutex held.
    void wakeWorker() {
        mWakeCount.fetch_add(1, std::memory_order_relaxed);
        if (mIsWorkerWaiting) {
            mIsWorkerWaiting = false;
            mCondition.notify_one();
        }
    }
    /// On the worker's thread; a return without a cause is allowed.
    void waitForWork(std::unique_lock<std::mutex>& lock) {
        mIsWorkerWaiting = true;
        mCondition.wait(lock);
        mIsWorkerWaiting = false;
    }
    void setCurrentTaskName(std::string&& name) {
        const std::lock_guard lock(mTaskNameMutex);
        mCurrentTaskName = std::move(name);
    }
};

} // namespace tarn
