#pragma once

#include <condition_variable>
#include <mutex>

namespace tarn::testing {

/// Lets one thread go on when another says so; `wait` takes one `set` back, which a promise cannot.
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
