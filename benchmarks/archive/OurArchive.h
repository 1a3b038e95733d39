#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace benchmarks {

/// Archives the files into `destination` by the file logger, on the calling thread, and returns
/// the archive. Throws when there is none.
std::filesystem::path archiveByFileLogger(
    const std::filesystem::path& destination,
    const std::vector<std::pair<std::string, std::string>>& files);

} // namespace benchmarks
