#pragma once

#include <ctime>
#include <string>

namespace tarn {

/// "2024-05-01T09:30:05Z", Coordinated Universal Time, or "2024-05-01T11:30:05+0200", the
/// computer's own; empty before the epoch.
std::string timestampText(std::time_t time, bool isLocal = false);

} // namespace tarn
