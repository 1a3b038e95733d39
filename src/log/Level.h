#pragma once

#include <cstdint>
#include <string_view>

namespace tarn::RootLoggerLevel {

/// Private and Test lie above Error in number: a threshold treats them as more severe.
enum Level : std::int32_t {
    Unknown = 0,
    Trace = 1,
    Debug = 2,
    Info = 3,
    Warn = 4,
    Error = 5,
    Private = 6,
    Test = 7,
};

/// The level's name; "Unknown" for every value outside 1 to 7.
std::string_view levelText(Level level) noexcept;

} // namespace tarn::RootLoggerLevel
