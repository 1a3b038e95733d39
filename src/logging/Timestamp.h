#pragma once

#include <ctime>
#include <string>

namespace tarn {

/// "2024-05-01T09:30:05Z", Coordinated Universal Time; empty before the epoch.
std::string timestampText(std::time_t time);

} // namespace tarn
