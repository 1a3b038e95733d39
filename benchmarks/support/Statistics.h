#pragma once

#include <span>
#include <vector>

namespace benchmarks {

/// The value below which `part` (0 to 1) of the values lie; sorts a copy. 0 for no values.
double percentile(std::span<const double> values, double part);

double median(std::span<const double> values);

} // namespace benchmarks
