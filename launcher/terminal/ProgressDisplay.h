#pragma once

#include "platform/Terminal.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace launcher {

/// One line of progress: "[#####.....]  50 %  12.3 MB/s  0:42 left", cut to `width` columns. Speed
/// and time are left out while there is nothing to tell them from.
std::string progressLine(float percent, std::chrono::milliseconds elapsed, std::uint64_t bytes,
                         int width);

/// Shows progress on standard error: a bar that is redrawn on a terminal, a plain line for each
/// tenth elsewhere.
class ProgressDisplay {
public:
    /// `bytes` is the size of the sources together. With a label, which goes before the bar, only
    /// terminals get something, and a line about the result follows in the bar's place.
    explicit ProgressDisplay(std::uint64_t bytes, std::string label = {});

    void update(float percent);
    /// Ends or empties the bar's line, so that text may follow.
    void finish();

private:
    std::uint64_t mBytes;
    std::string mLabel;
    bool mTerminal;
    std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
    std::string mShown;
    int mTenths = 0;
};

} // namespace launcher
