#include "AsyncQueue/AsyncQueue.h"

#include "AsyncQueue/QueueContext.h"
#include "AsyncQueue/QueueWorker.h"
#include "log/LogCall.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace tarn {
namespace {

constexpr std::uint32_t kFrontPosition = 1;

std::atomic<std::uint64_t> queueCreationCount{0};

void moveTasks(std::uint32_t type, std::deque<QueuedTask>& from, std::deque<QueuedTask>& to) {
    const auto first = std::stable_partition(
        from.begin(), from.end(), [&](const QueuedTask& task) { return task.type != type; });
    to.insert(to.end(), std::move_iterator(first), std::move_iterator(from.end()));
    from.erase(first, from.end());
}

} // namespace

AsyncQueue::AsyncQueue(const std::string& name, bool registerThread)
    : mContext(std::make_shared<Context>()) {
    ++queueCreationCount;
    mContext->mState.store(State::Running);
    mContext->mName = name;
    mContext->mRegisterThread = registerThread;
    std::thread worker([context = mContext] {
        QueueWorker(context).run();
        if (context->mDetached) {
            context->mThreadId.store({}); // the system gives it to another thread
        }
    });
    mContext->mThreadId.store(worker.get_id());
    mContext->mThread = std::move(worker);
}

AsyncQueue::~AsyncQueue() {
    AsyncQueue::stop();
}

void AsyncQueue::post(const std::string& taskName, TaskFunction&& task, std::uint32_t position,
                      std::uint32_t taskType) {
    const State state = mContext->mState.load();
    if (state == State::Exiting || state == State::Stopped) {
        return;
    }
    QueuedTask queued{std::move(task), taskType, taskName};
    const std::lock_guard lock(mContext->mMutex);
    const bool isHeldBack = mContext->isInitialiserPhase();
    if (position != kFrontPosition) {
        (isHeldBack ? mContext->mPendingQueue : mContext->mQueue).push_back(std::move(queued));
    } else if (isHeldBack) {
        mContext->mPendingQueue.push_front(std::move(queued));
    } else {
        const std::lock_guard takenLock(mContext->mTakenMutex);
        mContext->mTaken.push_front(std::move(queued));
    }
    if (!mContext->mSuspended.load()) {
        mContext->wakeWorker();
    }
}

void AsyncQueue::cancelTasks(std::uint32_t taskType) {
    Context::Queue dropped; // destroyed after the locks
    const std::lock_guard lock(mContext->mMutex);
    if (mContext->isInitialiserPhase()) {
        moveTasks(taskType, mContext->mPendingQueue, dropped);
        return;
    }
    const std::lock_guard takenLock(mContext->mTakenMutex);
    moveTasks(taskType, mContext->mTaken, dropped);
    moveTasks(taskType, mContext->mQueue, dropped);
}

void AsyncQueue::clear() {
    Context::Queue taken;
    Context::Queue queue;
    Context::Queue pendingQueue;
    const std::lock_guard lock(mContext->mMutex);
    const std::lock_guard takenLock(mContext->mTakenMutex);
    taken.swap(mContext->mTaken);
    queue.swap(mContext->mQueue);
    pendingQueue.swap(mContext->mPendingQueue);
}

bool AsyncQueue::hasPendingTasks() {
    return AsyncQueue::pendingTaskCount() != 0;
}

bool AsyncQueue::suspend(std::function<void()> callback) {
    TARN_LOG_AT(RootLoggerLevel::Info, 370,
                "Entering, asking the threadpool to suspend: " << mContext->mName);
    const std::lock_guard lock(mContext->mMutex);
    const std::lock_guard takenLock(mContext->mTakenMutex);
    const bool wasEmpty = mContext->isActiveQueueEmpty();
    if (!wasEmpty && callback) {
        mContext->mHasFinishedFunc.swap(callback);
    } else {
        mContext->mSuspended.store(true);
    }
    return wasEmpty;
}

void AsyncQueue::resume() {
    const std::lock_guard lock(mContext->mMutex);
    if (mContext->mSuspended.exchange(false)) {
        mContext->wakeWorker();
    }
}

std::size_t AsyncQueue::pendingTaskCount() {
    const std::lock_guard lock(mContext->mMutex);
    const std::lock_guard takenLock(mContext->mTakenMutex);
    return mContext->mTaken.size() + mContext->mQueue.size() + mContext->mPendingQueue.size();
}

void AsyncQueue::stop() {
    if (isStopped() || mContext->mState.exchange(State::Exiting) == State::Exiting) {
        return;
    }
    {
        // The lock keeps the wake-up from falling between the worker's test and its wait.
        const std::lock_guard lock(mContext->mMutex);
        mContext->wakeWorker();
        mContext->mCondition.notify_all();
    }
    try {
        if (mContext->mThreadId.load() == std::this_thread::get_id()) {
            mContext->mThread.detach();
            mContext->mDetached = true;
        } else if (mContext->mThread.joinable()) {
            mContext->mThread.join();
            mContext->mThreadId.store({});
        }
    } catch (const std::system_error& error) {
        TARN_LOG_AT(RootLoggerLevel::Error, 119,
                    "Failure waiting for worker thread to finish. code="
                        << error.code().category().name() << ":" << error.code().value());
        return;
    } catch (...) {
        TARN_LOG_AT(RootLoggerLevel::Error, 123,
                    "Encountered unexpected exception while calling mThread.join()");
        return;
    }
    mContext->mState.store(State::Stopped);
}

std::thread::id AsyncQueue::threadId() {
    return mContext->mThreadId.load();
}

bool AsyncQueue::isQueueThread() {
    return threadId() == std::this_thread::get_id();
}

bool AsyncQueue::isStopped() {
    return mContext->mState.load() == State::Stopped;
}

std::string AsyncQueue::currentTaskName() {
    const std::lock_guard lock(mContext->mTaskNameMutex);
    return mContext->mCurrentTaskName;
}

std::string_view AsyncQueue::stateName(State state) noexcept {
    switch (state) {
        case State::Initialising:
            return "initialising";
        case State::Processing:
            return "processing";
        case State::Running:
            return "running";
        case State::Exiting:
            return "exiting";
        case State::Stopped:
            return "stopped";
    }
    return "";
}

} // namespace tarn
