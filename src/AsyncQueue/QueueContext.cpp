#include "AsyncQueue/QueueContext.h"

#include <utility>

namespace tarn {

void AsyncQueue::Context::takeAll() {
    if (mTaken.empty()) {
        const std::lock_guard lock(mTakenMutex);
        mTaken.swap(mQueue);
    }
}

bool AsyncQueue::Context::startNext(TaskFunction& task) {
    const std::lock_guard lock(mTakenMutex);
    if (mTaken.empty() || mSuspended.load(std::memory_order_relaxed) || mHasFinishedFunc) {
        setCurrentTaskName({});
        return false;
    }
    QueuedTask& next = mTaken.front();
    task = std::move(next.task);
    setCurrentTaskName(std::move(next.name));
    mTaken.pop_front();
    return true;
}

} // namespace tarn
