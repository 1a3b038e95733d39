#pragma once

#include <ctime>

namespace tarn::platform {

/// A moment in the computer's own time zone; all zero when it cannot be told.
std::tm localTime(std::time_t time);

} // namespace tarn::platform
