#pragma once

#include <condition_variable>
#include <mutex>

namespace tarn::testing {

/// Lets one thread go on when another says so. Any thread; `wait` takes one `set` back.
///
/// The standard's own (`std::atomic::wait`, `<semaphore>`, `<latch>`, `<barrier>`) lose wake-ups
/// where the system has no futex: GCC 12's library then notifies without the lock under which the
/// waiting thread looks. Seen as tests that hang under Wine; the static checks refuse them.
class Signal {
public:
    void set() {
        const std::lock_guard lock(mMutex);
        mIsSet = true;
        mChanged.notify_all();
    }
    void wait() {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [this] { return mIsSet; });
        mIsSet = false;
    }

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mIsSet = false;
};

} // namespace tarn::testing
