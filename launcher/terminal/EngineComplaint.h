#pragma once

#include "logging/ILogger.h"

#include <mutex>
#include <string>

namespace launcher {

/// Keeps the engine's last Error line, for the sentence that tells the user why it failed.
class EngineComplaint : public tarn::ILogger {
public:
    void log(const std::string& line, const tarn::LogComponents& components) override;
    void clearLogs() override {}
    void close() override {}
    void flush() override {}

    /// Empty when the engine wrote none; masked like the log. Flush the root logger first.
    std::string text() const;
    void forget();

private:
    mutable std::mutex mMutex;
    std::string mText;
};

} // namespace launcher
