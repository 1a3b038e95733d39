#pragma once

#include "logging/Level.h"
#include "logging/LogComponents.h"

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace tarn {

/// What the calling thread captures of a log call, in the form that is cheapest to make: the texts
/// of its LogComponents are written out by the worker. Owns its texts, in buffers that it keeps
/// when it is used again.
struct LogRecord {
    std::time_t time = 0;
    RootLoggerLevel::Level level = RootLoggerLevel::Unknown;
    std::uint32_t threadId = 0;
    std::int32_t line = 0;
    std::string message;

    /// Takes time, thread and thread name from the calling thread. `file` is cut to its last path
    /// component.
    void capture(std::string_view text, RootLoggerLevel::Level messageLevel,
                 std::int32_t sourceLine, std::string_view file, std::string_view function,
                 std::string_view tag);

    std::string_view threadName() const { return part(0, mFileAt); }
    std::string_view file() const { return part(mFileAt, mFunctionAt); }
    std::string_view function() const { return part(mFunctionAt, mTagAt); }
    std::string_view tag() const { return part(mTagAt, mTexts.size()); }

private:
    std::string_view part(std::size_t begin, std::size_t end) const {
        return std::string_view(mTexts).substr(begin, end - begin);
    }

    std::string mTexts; ///< thread name, file, function and tag, one after another
    std::size_t mFileAt = 0;
    std::size_t mFunctionAt = 0;
    std::size_t mTagAt = 0;
};

} // namespace tarn
