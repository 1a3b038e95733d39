#include "engine/support/Progress.h"

#include <algorithm>

namespace zelcore {

namespace {

constexpr float kHighest = 99.0F; // the rest is the disk and the verification
constexpr float kSmallestStep = 1.0F;
constexpr auto kInterval = std::chrono::milliseconds(500);

} // namespace

void Progress::update(double share) {
    const float percent = static_cast<float>(std::clamp(share, 0.0, 1.0)) * kHighest;
    if (percent <= mLast) {
        return;
    }
    if (percent < mLast + kSmallestStep) {
        const auto now = std::chrono::steady_clock::now();
        if (now - mLastTime < kInterval) {
            return;
        }
        mLastTime = now;
    } else {
        mLastTime = std::chrono::steady_clock::now();
    }
    mLast = percent;
    mReport(percent);
}

} // namespace zelcore
