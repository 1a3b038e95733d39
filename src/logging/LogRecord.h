#pragma once

#include "logging/Level.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string_view>

namespace tarn {

/// What the calling thread captures of a log call, in the form that is cheapest to make: one block
/// of memory for lines of a usual length, and the texts of its LogComponents are written out by the
/// worker. Owns its texts.
class LogRecord {
public:
    std::time_t time = 0;
    RootLoggerLevel::Level level = RootLoggerLevel::Unknown;
    std::uint32_t threadId = 0;
    std::int32_t line = 0;

    LogRecord() = default;
    LogRecord(const LogRecord&) = delete;
    LogRecord& operator=(const LogRecord&) = delete;

    /// Takes time, thread and thread name from the calling thread. `file` is cut to its last path
    /// component.
    void capture(std::string_view message, RootLoggerLevel::Level messageLevel,
                 std::int32_t sourceLine, std::string_view file, std::string_view function,
                 std::string_view tag);
    /// Gives back what a long line took.
    void shrink() noexcept { mLong.reset(); }

    std::string_view threadName() const { return part(0); }
    std::string_view file() const { return part(1); }
    std::string_view function() const { return part(2); }
    std::string_view tag() const { return part(3); }
    std::string_view message() const { return part(4); }

private:
    static constexpr std::size_t kUsualSize = 216;
    static constexpr std::size_t kParts = 5;

    std::string_view part(std::size_t number) const {
        const std::size_t begin = number == 0 ? 0 : mEnds[number - 1];
        return {(mLong != nullptr ? mLong.get() : mUsual.data()) + begin, mEnds[number] - begin};
    }

    std::array<std::size_t, kParts> mEnds{}; ///< of the texts, which follow one another
    std::unique_ptr<char[]> mLong;           ///< the texts, where mUsual cannot hold them
    std::array<char, kUsualSize> mUsual;
};

} // namespace tarn
