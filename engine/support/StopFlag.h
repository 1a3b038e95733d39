#pragma once

#include "engine/support/Failure.h"

#include <atomic>

namespace zelcore {

/// Set once, from any thread; looked at by the conversion between packets and inside its I/O.
class StopFlag {
public:
    void raise() { mRaised = true; }
    bool isRaised() const { return mRaised.load(std::memory_order_relaxed); }
    void throwIfRaised() const {
        if (isRaised()) {
            throw Stopped{};
        }
    }

private:
    std::atomic<bool> mRaised{false};
};

} // namespace zelcore
