#pragma once

#include "launcher/Outcome.h"
#include "launcher/Preflight.h"
#include "launcher/terminal/ProgressDisplay.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace launcher {

/// Tells how conversions go on the terminal: a person on standard error, and a program, where that
/// is asked for, by JSON on standard output.
class Narrator {
public:
    /// `count` conversions are each told in a line; 0 stands for the only one there is.
    explicit Narrator(bool isForProgram, std::size_t count = 0)
        : mIsForProgram(isForProgram), mCount(count) {}

    void begin(const Job& job, std::uint64_t bytes);
    void progress(float percent);
    /// Also of one that did not begin.
    void end(const Job& job, const Outcome& outcome);

private:
    void endForProgram(const Job& job, const Outcome& outcome) const;

    const bool mIsForProgram;
    const std::size_t mCount;
    std::size_t mEnded = 0;
    int mPercent = 0;
    std::optional<ProgressDisplay> mDisplay;
};

} // namespace launcher
