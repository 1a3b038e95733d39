#pragma once

#include "engine/support/BoundedLock.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace zelcore {

/// Holds a sink that belongs to the program. Any thread calls through it; whoever takes the sink
/// away knows afterwards that no other thread is inside a call on it.
template <class Sink>
class SinkGate {
public:
    explicit SinkGate(Sink* sink = nullptr) { attach(sink); }

    /// Puts another sink, or none, in place and waits for the calls on the former one that other
    /// threads have under way; a call further up the own stack is not waited for.
    void set(Sink* sink) { set(std::unique_lock(mMutex), sink, std::nullopt); }
    /// Takes the sink away likewise, but gives up waiting in time, for unload hooks.
    void drop() { set(lockWithin(mMutex, kUnloadBound), nullptr, kUnloadBound); }

    /// Runs `call(sink)` outside the lock. False when there is no sink.
    template <class Call>
    bool call(Call&& call) {
        std::shared_ptr<Attachment> attachment;
        {
            const std::lock_guard lock(mMutex);
            attachment = mCurrent;
            if (attachment == nullptr) {
                return false;
            }
            attachment->callers.push_back(std::this_thread::get_id());
        }
        const Leave leave{*this, *attachment};
        call(*attachment->sink);
        return true;
    }

private:
    struct Attachment {
        Sink* sink;
        std::vector<std::thread::id> callers; ///< one entry for each call under way
    };
    struct Leave {
        SinkGate& gate;
        Attachment& attachment;
        ~Leave() {
            const std::lock_guard lock(gate.mMutex);
            attachment.callers.erase(
                std::ranges::find(attachment.callers, std::this_thread::get_id()));
            gate.mLeft.notify_all();
        }
    };

    void set(std::unique_lock<std::mutex> lock, Sink* sink,
             std::optional<std::chrono::milliseconds> bound) {
        if (!lock.owns_lock()) {
            return; // its thread is gone, see lockWithin
        }
        const std::shared_ptr<Attachment> former = mCurrent;
        attach(sink);
        if (former == nullptr) {
            return;
        }
        const auto isLeft = [&] {
            return std::ranges::all_of(former->callers, [own = std::this_thread::get_id()](
                                                            auto caller) { return caller == own; });
        };
        if (bound) {
            mLeft.wait_for(lock, *bound, isLeft);
        } else {
            mLeft.wait(lock, isLeft);
        }
    }

    void attach(Sink* sink) {
        mCurrent = sink == nullptr ? nullptr : std::make_shared<Attachment>(Attachment{sink, {}});
    }

    std::mutex mMutex;
    std::condition_variable mLeft;
    std::shared_ptr<Attachment> mCurrent;
};

} // namespace zelcore
