#pragma once

#include "AsyncQueue/QueueContext.h"
#include "AsyncQueue/QueueWorker.h"

namespace tarn {

/// Reaches what the queue's interface does not offer.
class AsyncQueueProbe {
public:
    explicit AsyncQueueProbe(const AsyncQueue& queue) : mContext(queue.mContext) {}

    void enter(AsyncQueue::State state) {
        const std::lock_guard lock(mContext->mMutex);
        mContext->mState.exchange(state);
        mContext->wakeWorker();
    }
    AsyncQueue::State state() const { return mContext->mState.load(); }
    std::size_t heldBackCount() const {
        const std::lock_guard lock(mContext->mMutex);
        return mContext->mPendingQueue.size();
    }
    /// An initialiser task.
    void postDirectly(const std::string& name, TaskFunction&& task) {
        const std::lock_guard lock(mContext->mMutex);
        mContext->mQueue.growBack() = {std::move(task), 0, name};
        mContext->wakeWorker();
    }
    void swapQueues() {
        std::unique_lock lock(mContext->mMutex);
        QueueWorker(mContext).swapQueues(lock);
    }
    /// Makes stop() on the worker try to join it.
    void forgetThread() { mContext->mThreadId.store({}); }

private:
    std::shared_ptr<AsyncQueue::Context> mContext;
};

} // namespace tarn
