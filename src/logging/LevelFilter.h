#pragma once

#include "log/Level.h"

#include <atomic>

namespace tarn {

/// Decides which levels are logged. Any thread.
class LevelFilter {
public:
    bool isEnabled(RootLoggerLevel::Level level) const noexcept {
        if (mAllLevels.load(std::memory_order_relaxed)) {
            return level != RootLoggerLevel::Private ||
                   mPrivateEnabled.load(std::memory_order_relaxed);
        }
        // Trace is off whatever the threshold; Private also needs its own switch.
        return level >= mThreshold.load(std::memory_order_relaxed) &&
               level != RootLoggerLevel::Trace &&
               (level != RootLoggerLevel::Private ||
                mPrivateEnabled.load(std::memory_order_relaxed));
    }

    void setThreshold(RootLoggerLevel::Level level) noexcept { mThreshold.exchange(level); }
    void setPrivateEnabled(bool enabled) noexcept { mPrivateEnabled.store(enabled); }
    void setAllLevels(bool enabled) noexcept { mAllLevels.store(enabled); }

private:
    std::atomic<RootLoggerLevel::Level> mThreshold{RootLoggerLevel::Trace};
    std::atomic<bool> mPrivateEnabled{false};
    std::atomic<bool> mAllLevels{false};
};

} // namespace tarn
