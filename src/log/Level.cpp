#include "log/Level.h"

namespace tarn::RootLoggerLevel {

std::string_view levelText(Level level) noexcept {
    switch (level) {
        case Trace:
            return "Trace";
        case Debug:
            return "Debug";
        case Info:
            return "Info";
        case Warn:
            return "Warn";
        case Error:
            return "Error";
        case Private:
            return "Private";
        case Test:
            return "Test";
        case Unknown:
            break;
    }
    return "Unknown";
}

} // namespace tarn::RootLoggerLevel
