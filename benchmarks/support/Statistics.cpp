#include "support/Statistics.h"

#include <algorithm>
#include <cmath>

namespace benchmarks {

double percentile(std::span<const double> values, double part) {
    if (values.empty()) {
        return 0.0;
    }
    std::vector<double> sorted(values.begin(), values.end());
    const auto last = static_cast<double>(sorted.size() - 1);
    const auto rank = static_cast<std::ptrdiff_t>(std::llround(part * last));
    std::nth_element(sorted.begin(), sorted.begin() + rank, sorted.end());
    return sorted[static_cast<std::size_t>(rank)];
}

double median(std::span<const double> values) {
    return percentile(values, 0.5);
}

} // namespace benchmarks
