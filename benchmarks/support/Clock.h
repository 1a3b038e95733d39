#pragma once

#include <cstdint>
#include <vector>
#if defined(__x86_64__)
#include <x86intrin.h>
#else
#include <ctime>
#endif

namespace benchmarks {

/// Times single calls: the processor's time stamp counter between two fences, so that nothing of
/// the timed call leaks out of it. Elsewhere the monotonic clock.
class Clock {
public:
    static std::uint64_t ticks() noexcept {
#if defined(__x86_64__)
        _mm_lfence();
        const std::uint64_t now = __rdtsc();
        _mm_lfence();
        return now;
#else
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U +
               static_cast<std::uint64_t>(now.tv_nsec);
#endif
    }

    /// Measures the counter's rate against the monotonic clock and what an empty interval costs.
    /// Not for use while other threads run.
    static Clock calibrate();

    /// The interval in nanoseconds below which `part` (0 to 1) of the intervals lie, without the
    /// cost of reading the clock. A counter often advances in steps of many ticks (10 ns on some
    /// processors), so the place within a step is interpolated from how many intervals share it.
    /// Sorts `intervals`.
    double percentile(std::vector<std::uint64_t>& intervals, double part) const;

    double overheadNanoseconds() const noexcept {
        return mOverhead * mNanosecondsPerTick;
    }
    double stepNanoseconds() const noexcept {
        return mStep * mNanosecondsPerTick;
    }

private:
    double mNanosecondsPerTick = 1.0;
    double mOverhead = 0.0; ///< ticks, the mean of empty intervals
    double mStep = 1.0;     ///< ticks
};

/// Seconds of the monotonic clock, for whole runs.
double monotonicSeconds() noexcept;

} // namespace benchmarks
