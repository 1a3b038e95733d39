#pragma once

#include "log/Level.h"

#include <atomic>

namespace tarn {

/// Decides which levels are logged. Any thread.
class LevelFilter {
public:
    bool isEnabled(RootLoggerLevel::Level level) const noexcept {
        if (mAllLevels) {
            return level != RootLoggerLevel::Private || mPrivateEnabled;
        }
        // Trace is off whatever the threshold; Private also needs its own switch.
        return level >= mThreshold.load(std::memory_order_relaxed) &&
               level != RootLoggerLevel::Trace &&
               (level != RootLoggerLevel::Private || mPrivateEnabled);
    }

    void setThreshold(RootLoggerLevel::Level level) noexcept { mThreshold.store(level); }

private:
    std::atomic<RootLoggerLevel::Level> mThreshold{RootLoggerLevel::Trace};
    // Switches of the client framework, which this program leaves off.
    const bool mPrivateEnabled = false;
    const bool mAllLevels = false;
};

} // namespace tarn
