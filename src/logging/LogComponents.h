#pragma once

#include <cstdint>
#include <string>

namespace tarn {

/// One captured log record. It owns all its texts.
struct LogComponents {
    std::string timestamp; ///< "2024-05-01T09:30:05Z"; empty before the epoch
    std::string level;
    std::string threadId;   ///< "0x" and lowercase hexadecimal digits
    std::string processId;  ///< decimal
    std::string threadName; ///< empty when the thread has none
    std::string file;       ///< last path component only
    std::string function;
    std::string message;
    std::string tag;
    std::int32_t line = 0;
};

} // namespace tarn
