#pragma once

#include "AsyncQueue/AsyncQueue.h"
#include "AsyncQueue/ShortWait.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace tarn {

struct QueuedTask {
    TaskFunction task;
    std::uint32_t type = 0;
    std::string name;
};

/// What a queue and its worker share. Lock order: mMutex, mTakenMutex, mTaskNameMutex.
///
/// The active queue is mTaken and then mQueue: the worker takes all that is posted at once, and the
/// posters, who meet it at mMutex, meet it once for many tasks. What it has not started stays in
/// mTaken, where whoever holds both mutexes can put a task in front, drop tasks and count them.
struct AsyncQueue::Context {
    using Queue = std::deque<QueuedTask>;
    using Lock = std::unique_lock<std::mutex>;

    std::mutex mMutex; ///< all queues, mHasFinishedFunc, changes of mSuspended, mIsWorkerWaiting
    std::atomic<std::uint32_t> mWakeCount{0}; ///< a worker that looks for work sees it change
    bool mIsWorkerWaiting = false;            ///< spares a wake-up that nobody waits for
    Queue mQueue;
    Queue mPendingQueue; ///< posts of the initialiser phase

    std::mutex mTaskNameMutex; ///< mCurrentTaskName alone
    std::string mName;
    bool mRegisterThread = true;
    std::condition_variable mCondition;
    std::thread mThread;
    std::atomic<State> mState{State::Running};
    std::atomic<bool> mSuspended{false};
    bool mDetached = false; ///< set and read on the worker's thread only
    /// A suspension that waits for the running task. Changed with mTakenMutex held, too.
    std::function<void()> mHasFinishedFunc;
    /// Set by the worker before its first task: mThread itself is still being stored then.
    std::atomic<std::thread::id> mThreadId{};

    /// On lines of memory that a post does not touch.
    alignas(64) std::mutex mTakenMutex; ///< mTaken, of which the worker takes with it alone
    Queue mTaken;
    std::string mCurrentTaskName;

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

    /// With mMutex held. On the worker's thread, or with mTakenMutex held.
    bool isActiveQueueEmpty() const { return mTaken.empty() && mQueue.empty(); }
    /// With mMutex held.
    void wakeWorker() {
        mWakeCount.store(mWakeCount.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        if (mIsWorkerWaiting) {
            mIsWorkerWaiting = false;
            mCondition.notify_one();
        }
    }
    /// On the worker's thread, without a lock: true as soon as mWakeCount is no longer `seen`.
    bool lookForWork(std::uint32_t seen, std::chrono::microseconds longest) const noexcept {
        return shortWait::forMore(
            longest, [&] { return mWakeCount.load(std::memory_order_relaxed) != seen; });
    }
    /// On the worker's thread; a return without a cause is allowed.
    void waitForWork(Lock& lock) {
        mIsWorkerWaiting = true;
        mCondition.wait(lock);
        mIsWorkerWaiting = false;
    }
    /// On the worker's thread, with mMutex held.
    void takeAll();
    /// On the worker's thread, without mMutex: the next task of those that were taken, which is
    /// then the current one. False, and no task is current, when there is none or a suspension is
    /// due.
    bool startNext(TaskFunction& task);
    void setCurrentTaskName(std::string&& name) {
        const std::lock_guard lock(mTaskNameMutex);
        mCurrentTaskName = std::move(name);
    }
};

} // namespace tarn
