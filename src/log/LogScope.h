#pragma once

#include "log/LogCall.h"

#include <string_view>

namespace tarn {

/// Names an operation to the logger: its opening is a Trace record, and the lines that belong to it
/// carry its name as their function. Costs one test of the level gate.
class LogScope {
public:
    /// `name` outlives the scope: a literal.
    LogScope(std::string_view name, std::string_view file, int line) : mName(name), mFile(file) {
        if (isLogEnabled(RootLoggerLevel::Trace)) {
            writeLog(name, RootLoggerLevel::Trace, line, file, name);
        }
    }

    void log(RootLoggerLevel::Level level, int line, const LogStream& text) const {
        writeLog(text.text(), level, line, mFile, mName);
    }

private:
    std::string_view mName;
    std::string_view mFile;
};

} // namespace tarn

/// Opens the scope of an operation of FileUtils until the end of the block.
#define TARN_FILE_UTILS_SCOPE(operation) \
    const ::tarn::LogScope scope("FileUtils::" operation, ::tarn::sourceName(__FILE__), __LINE__)

/// Logs `stream` (operands joined by <<) as a line of the open scope. The operands are evaluated
/// only when the level is enabled.
#define TARN_FILE_UTILS_LOG(level, ...)                                       \
    do {                                                                      \
        if (::tarn::isLogEnabled(level)) {                                    \
            scope.log(level, __LINE__, (::tarn::LogStream() << __VA_ARGS__)); \
        }                                                                     \
    } while (false)
