#pragma once

#include "logging/LogComponents.h"

#include <string>

namespace tarn {

/// A sink of finished log lines. The root logger calls it on its worker thread only.
class ILogger {
public:
    virtual ~ILogger() = default;
    /// Writes one line, given without its terminator; `components` is what it was formatted from.
    virtual void log(const std::string& line, const LogComponents& components) = 0;
    /// Deletes the sink's files and starts afresh.
    virtual void clearLogs() = 0;
    virtual void close() = 0;
    virtual void flush() = 0;
};

} // namespace tarn
