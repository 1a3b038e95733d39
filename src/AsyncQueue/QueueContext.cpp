#include "AsyncQueue/QueueContext.h"

#include <utility>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace tarn {
namespace {

constexpr int kTries = 7;
constexpr int kPausesBetweenLooks = 8;
constexpr std::chrono::microseconds kGatheringTime{10};

using Clock = std::chrono::steady_clock;

void pause(int times) noexcept {
    for (; times > 0; --times) {
#if defined(__x86_64__) || defined(__i386__)
        _mm_pause();
#endif
    }
}

} // namespace

AsyncQueue::Context::Lock AsyncQueue::Context::lockShortly() {
    Lock lock(mMutex, std::try_to_lock);
    for (int tries = 0; !lock.owns_lock() && tries < kTries; ++tries) {
        pause(1 << tries); // looking at it all the time would hold up its owner
        if (lock.try_lock()) {
            return lock;
        }
    }
    if (!lock.owns_lock()) {
        lock.lock();
    }
    return lock;
}

bool AsyncQueue::Context::lookForWork(std::uint32_t seen,
                                      std::chrono::microseconds longest) const noexcept {
    // No yielding: on a busy machine that is the end of the line, behind a sleeper's wake-up.
    const auto end = Clock::now() + longest;
    while (mWakeCount.load(std::memory_order_relaxed) == seen) {
        if (Clock::now() >= end) {
            return false;
        }
        pause(kPausesBetweenLooks);
    }
    // In a burst a worker that is faster than its posters would take each task by itself, and the
    // memory of mutex and queue would travel between the processors for each.
    const auto gathered = Clock::now() + kGatheringTime;
    while (Clock::now() < gathered) {
        pause(kPausesBetweenLooks);
    }
    return true;
}

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
