#include "AsyncQueue/QueueWorker.h"

#include "AsyncQueue/AsyncQueueDestroyedException.h"
#include "log/LogCall.h"
#include "threading/ScopedThreadNotifications.h"
#include "threading/ThreadUtilities.h"

#include <chrono>
#include <exception>
#include <thread>
#include <utility>

namespace tarn {
namespace {

using State = AsyncQueue::State;

constexpr const char* kCallSiteFile = "AsyncQueue/AsyncQueue";
constexpr std::uint32_t kCallSiteLine = 186;
constexpr std::chrono::microseconds kLookingTime{20};

} // namespace

QueueWorker::QueueWorker(std::shared_ptr<AsyncQueue::Context> context)
    : mContext(std::move(context)),
      mName(mContext->mName),
      mScope("AsyncQueue::" + mName, mContext->mRegisterThread) {
}

void QueueWorker::run() {
    mContext->mThreadId.store(std::this_thread::get_id());
    mContext->setCurrentTaskName({});
    Lock lock(mContext->mMutex);
    while (mContext->mState.load() != State::Exiting || !mContext->isActiveQueueEmpty()) {
        if (mContext->mHasFinishedFunc) {
            suspendSelf(lock);
        } else if (mContext->mSuspended.load()) {
            idle(lock);
        } else if (!mContext->isActiveQueueEmpty()) {
            if (!runTasks(lock)) {
                return;
            }
        } else if (mContext->mState.load() == State::Processing) {
            swapQueues(lock);
        } else {
            idle(lock);
        }
    }
}

/// Going to sleep and being woken costs the worker and the next poster a system call each: a burst
/// of posts finds the worker still looking. Single tasks do not: on a busy machine the poster would
/// wait for the look to end.
void QueueWorker::idle(Lock& lock) {
    const std::uint32_t seen = mContext->mWakeCount.load(std::memory_order_relaxed);
    if (mMayLook || mScope.isOpen()) {
        lock.unlock();
        mScope.close();
        mMayLook = std::exchange(mMayLook, false) && mContext->lookForWork(seen, kLookingTime);
        lock.lock();
    } else {
        mContext->waitForWork(lock);
    }
}

void QueueWorker::suspendSelf(Lock& lock) {
    mContext->mSuspended.store(true);
    {
        std::function<void()> callback;
        {
            const std::lock_guard takenLock(mContext->mTakenMutex);
            callback.swap(mContext->mHasFinishedFunc);
        }
        lock.unlock();
        mScope.close();
        // Outside the lock, because the line may be posted to this very queue.
        TARN_LOG_AT(RootLoggerLevel::Info, 139,
                    "mHasFinishedFunc is not nil, so we are ready to suspend and notify callback: "
                        << mName);
        callSuspensionCallback(callback);
    }
    describeWhenDetached();
    lock.lock();
}

void QueueWorker::callSuspensionCallback(const std::function<void()>& callback) {
    try {
        const ScopedThreadNotifications scope("AsyncQueue::" + mName + "[Suspension]",
                                              mContext->mRegisterThread);
        callback();
    } catch (const std::exception& error) {
        TARN_LOG_AT(RootLoggerLevel::Error, 153,
                    "AsyncQueue[" << mName
                                  << "] Encountered an exception while calling suspension lambda: "
                                  << error.what());
    } catch (...) {
        TARN_LOG_AT(
            RootLoggerLevel::Error, 157,
            "AsyncQueue[" << mName
                          << "]Encountered a generic exception while calling suspension lambda");
    }
}

void QueueWorker::swapQueues(Lock& lock) {
    const State before = mContext->mState.load();
    const bool isDry = mContext->isActiveQueueEmpty();
    if (before == State::Processing && isDry) {
        mContext->mQueue.swap(mContext->mPendingQueue);
        mContext->mState.store(State::Running);
    }
    const State after = mContext->mState.load();
    // The lines may be posted to this very queue.
    lock.unlock();
    if (before != State::Processing) {
        TARN_LOG_AT(RootLoggerLevel::Warn, 229,
                    "Thread pool not in processing state, cannot swap queues: " << mName);
    } else if (!isDry) {
        TARN_LOG_AT(RootLoggerLevel::Warn, 233,
                    "Initialiser task queued after setting initialised to true, delaying queue "
                    "swap: "
                        << mName);
    }
    TARN_LOG_AT(RootLoggerLevel::Info, 240,
                "Threadpool state is now " << AsyncQueue::stateName(after) << ", name: " << mName);
    lock.lock();
}

bool QueueWorker::runTasks(Lock& lock) {
    mContext->takeAll();
    lock.unlock();
    TaskFunction task;
    for (int started = 1; mContext->startNext(task); ++started) {
        mMayLook = mMayLook || started > 1;
        // Only this thread changes the name, so it may read it without the lock.
        if (!callTask(task, mContext->mCurrentTaskName)) {
            return false;
        }
        task = TaskFunction();
        describeWhenDetached();
    }
    lock.lock();
    return true;
}

bool QueueWorker::callTask(TaskFunction& task, const std::string& taskName) {
    try {
        mScope.enter(taskName);
        task(CallSite::capture(kCallSiteFile, kCallSiteLine, "doWork"));
        mScope.leave();
    } catch (const AsyncQueueDestroyedException&) {
        mScope.close();
        TARN_LOG_AT(RootLoggerLevel::Warn, 190,
                    "AsyncQueue[" << mName << "] Destructed running task" << taskName);
        return false;
    } catch (const std::exception& error) {
        mScope.close();
        TARN_LOG_AT(RootLoggerLevel::Error, 195,
                    "AsyncQueue[" << mName << "] Encountered an exception while running a task: "
                                  << error.what() << " with a task name of " << taskName);
    } catch (...) {
        mScope.close();
        TARN_LOG_AT(RootLoggerLevel::Error, 199,
                    "AsyncQueue[" << mName
                                  << "] Encountered a generic exception while running task "
                                  << taskName);
    }
    return true;
}

void QueueWorker::describeWhenDetached() {
    if (mContext->mDetached) {
        mScope.close();
        ThreadUtilities::setThreadDescription("Detached::AsyncQueue::" + mName);
    }
}

} // namespace tarn
