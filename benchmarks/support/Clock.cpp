#include "support/Clock.h"

#include <algorithm>
#include <chrono>
#include <numeric>
#include <vector>

namespace benchmarks {
namespace {

/// The distance between the two lowest values that are not rare.
double stepOf(const std::vector<std::uint64_t>& sorted) {
    std::vector<std::uint64_t> frequent;
    for (auto first = sorted.begin(); first != sorted.end() && frequent.size() < 2;) {
        const auto last = std::upper_bound(first, sorted.end(), *first);
        if (last - first > static_cast<std::ptrdiff_t>(sorted.size() / 50)) {
            frequent.push_back(*first);
        }
        first = last;
    }
    return frequent.size() < 2 ? 1.0 : static_cast<double>(frequent[1] - frequent[0]);
}

} // namespace

double monotonicSeconds() noexcept {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

Clock Clock::calibrate() {
    Clock clock;
    const double begin = monotonicSeconds();
    const std::uint64_t beginTicks = ticks();
    while (monotonicSeconds() - begin < 0.05) {
    }
    const std::uint64_t endTicks = ticks();
    clock.mNanosecondsPerTick =
        (monotonicSeconds() - begin) * 1e9 / static_cast<double>(endTicks - beginTicks);

    std::vector<std::uint64_t> empty(50'000);
    for (auto& interval : empty) {
        const std::uint64_t before = ticks();
        interval = ticks() - before;
    }
    // The mean of the undisturbed ones: the median would only hit one step of the counter.
    std::sort(empty.begin(), empty.end());
    empty.resize(empty.size() * 99 / 100);
    clock.mOverhead = static_cast<double>(std::accumulate(empty.begin(), empty.end(), 0ULL)) /
                      static_cast<double>(empty.size());
    clock.mStep = stepOf(empty);
    return clock;
}

double Clock::percentile(std::vector<std::uint64_t>& intervals, double part) const {
    if (intervals.empty()) {
        return 0.0;
    }
    std::sort(intervals.begin(), intervals.end());
    const auto rank =
        static_cast<std::size_t>(part * static_cast<double>(intervals.size() - 1) + 0.5);
    const auto [first, last] =
        std::equal_range(intervals.begin(), intervals.end(), intervals[rank]);
    const double share =
        (static_cast<double>(rank) + 0.5 - static_cast<double>(first - intervals.begin())) /
        static_cast<double>(last - first);
    const double ticks = static_cast<double>(intervals[rank]) + (share - 0.5) * mStep - mOverhead;
    return std::max(ticks, 0.0) * mNanosecondsPerTick;
}

} // namespace benchmarks
