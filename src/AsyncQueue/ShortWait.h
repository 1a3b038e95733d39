#pragma once

#include <chrono>

/// Ways of waiting for what takes less time than a system call. None of them yields: on a busy
/// machine that is the end of the line, behind a sleeper's wake-up.
namespace tarn::shortWait {

void pause(int times) noexcept;

/// Looks until `hasCome()`, for so long at most; false when it did not come. In a burst a worker
/// that is faster than its posters would take each task by itself, and the memory that they share
/// would travel between the processors for each: so it lets some more gather.
bool forMore(std::chrono::microseconds longest, const auto& hasCome) noexcept {
    using Clock = std::chrono::steady_clock;
    constexpr int kPausesBetweenLooks = 8;
    constexpr std::chrono::microseconds kGatheringTime{10};
    for (const auto end = Clock::now() + longest; !hasCome();) {
        if (Clock::now() >= end) {
            return false;
        }
        pause(kPausesBetweenLooks);
    }
    for (const auto gathered = Clock::now() + kGatheringTime; Clock::now() < gathered;) {
        pause(kPausesBetweenLooks);
    }
    return true;
}

} // namespace tarn::shortWait
