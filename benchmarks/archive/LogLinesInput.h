#pragma once

#include <filesystem>

namespace benchmarks {

/// 100 MB of lines as the tool logs them in its conversions, written by its own logger. Made once.
std::filesystem::path logOfConversions(const std::filesystem::path& inputs);

} // namespace benchmarks
