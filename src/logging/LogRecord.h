#pragma once

#include "log/Level.h"

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace tarn {

/// What the calling thread knows of a log call. The texts are somebody else's.
struct LogRecord {
    std::time_t time = 0;
    std::uint32_t threadId = 0;
    std::int32_t line = 0;
    RootLoggerLevel::Level level = RootLoggerLevel::Unknown;
    std::string_view threadName;
    std::string_view file; ///< last path component only
    std::string_view function;
    std::string_view tag;
    std::string_view message;

    /// Takes time, thread and thread name from the calling thread. `file` is cut to its last path
    /// component; `whenLong` is a place for a name that is longer than usual.
    static LogRecord capture(std::string_view message, RootLoggerLevel::Level level,
                             std::int32_t line, std::string_view file, std::string_view function,
                             std::string_view tag, std::string& whenLong);
};

} // namespace tarn
