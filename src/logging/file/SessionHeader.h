#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::string_view kSessionHeaderText = "... Obrix session info header ...\n\n";
inline constexpr std::size_t kSessionHeaderBytes = 80'003;

/// Writes the header text and the first bytes of the current log file into the header file, always
/// the same number of them: what a shorter file lacks is zero. Failures are ignored.
void saveSessionHeader(const std::string& currentLogFile, const std::string& headerFile);

} // namespace tarn
