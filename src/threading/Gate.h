#pragma once

#include "threading/BoundedLock.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace tarn {

/// Lets calls through until it is closed. Once close() has returned in time, no other thread is
/// inside a call, and what the calls use may go. Any thread.
class Gate {
public:
    /// Runs `call`, outside the lock, unless the gate is closed. False when it is.
    template <typename Call>
    bool pass(Call&& call) {
        {
            const std::lock_guard lock(mMutex);
            if (mIsClosed) {
                return false;
            }
            mInside.push_back(std::this_thread::get_id());
        }
        const Leave leave{*this};
        call();
        return true;
    }

    /// Turns away whoever comes later and waits for the calls that other threads have under way,
    /// for `patience` at most; a call further up the own stack is not waited for.
    void close(std::optional<std::chrono::milliseconds> patience = std::nullopt) {
        std::unique_lock<std::mutex> lock =
            patience ? lockWithin(mMutex, *patience) : std::unique_lock(mMutex);
        if (!lock.owns_lock()) {
            return; // the thread that held it is gone, see lockWithin
        }
        mIsClosed = true;
        const auto isEmpty = [&] {
            return std::ranges::all_of(
                mInside, [own = std::this_thread::get_id()](auto caller) { return caller == own; });
        };
        if (patience) {
            mLeft.wait_for(lock, *patience, isEmpty);
        } else {
            mLeft.wait(lock, isEmpty);
        }
    }

private:
    struct Leave {
        Gate& gate;
        ~Leave() {
            const std::lock_guard lock(gate.mMutex);
            gate.mInside.erase(std::ranges::find(gate.mInside, std::this_thread::get_id()));
            gate.mLeft.notify_all();
        }
    };

    std::mutex mMutex;
    std::condition_variable mLeft;
    std::vector<std::thread::id> mInside; ///< one entry for each call under way
    bool mIsClosed = false;
};

} // namespace tarn
