#pragma once

#include "engine/support/AvHandles.h"

#include <chrono>
#include <functional>

namespace zelcore {

/// Turns work done into the percentage that the program sees: never falling, below 100 until the
/// destination is complete, and not more often than somebody can look.
class Progress {
public:
    using Report = std::function<void(float percent)>;
    explicit Progress(Report report) : mReport(std::move(report)) { mReport(0.0F); }

    /// Share of the work that is done, 0 to 1.
    void update(double share);
    void complete() { mReport(100.0F); }

private:
    Report mReport;
    float mLast = 0;
    std::chrono::steady_clock::time_point mLastTime = std::chrono::steady_clock::now();
};

} // namespace zelcore
