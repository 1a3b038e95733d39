#pragma once

#include "threading/Gate.h"

#include <memory>
#include <mutex>
#include <utility>

namespace zelcore {

/// Holds a sink that belongs to the program. Any thread calls through it; whoever takes the sink
/// away knows afterwards that no other thread is inside a call on it.
template <class Sink>
class SinkGate {
public:
    explicit SinkGate(Sink* sink = nullptr) : mCurrent(attach(sink)) {}

    /// Puts another sink, or none, in place and waits for the calls on the former one that other
    /// threads have under way; a call further up the own stack is not waited for.
    void set(Sink* sink) {
        if (const auto former = replace(std::unique_lock(mMutex), attach(sink))) {
            former->gate.close();
        }
    }
    /// Takes the sink away likewise, but gives up waiting in time, for unload hooks.
    void drop() {
        if (const auto former = replace(tarn::lockWithin(mMutex, tarn::kUnloadBound), nullptr)) {
            former->gate.close(tarn::kUnloadBound);
        }
    }

    /// Runs `call(sink)` outside the lock. False when there is no sink.
    template <class Call>
    bool call(Call&& call) {
        while (const std::shared_ptr<Attachment> attachment = current()) {
            // When the sink was taken away just now, there may be another one.
            if (attachment->gate.pass([&] { call(*attachment->sink); })) {
                return true;
            }
        }
        return false;
    }

private:
    struct Attachment {
        Sink* sink;
        tarn::Gate gate;
    };

    static std::shared_ptr<Attachment> attach(Sink* sink) {
        if (sink == nullptr) {
            return nullptr;
        }
        auto attachment = std::make_shared<Attachment>();
        attachment->sink = sink;
        return attachment;
    }
    std::shared_ptr<Attachment> current() {
        const std::lock_guard lock(mMutex);
        return mCurrent;
    }
    std::shared_ptr<Attachment> replace(std::unique_lock<std::mutex> lock,
                                        std::shared_ptr<Attachment> next) {
        return lock.owns_lock() ? std::exchange(mCurrent, std::move(next)) : nullptr;
    }

    std::mutex mMutex;
    std::shared_ptr<Attachment> mCurrent;
};

} // namespace zelcore
