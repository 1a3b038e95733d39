#pragma once

#include "logging/ILogger.h"
#include "support/ErrorWatch.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarn::testing {

/// A sink at the end of the real road that keeps what it is given, and whose Error lines fail the
/// running test unless expectErrorLine (ErrorWatch.h) announced them. Lines come asynchronously:
/// flush the root logger before the test ends.
class FatalLogSink : public ILogger {
public:
    void log(const std::string& line, const LogComponents& components) override {
        if (components.level == "Error") {
            noteErrorLine(components.message);
        }
        const std::lock_guard lock(mMutex);
        mWritten.emplace_back(line, components);
    }
    void clearLogs() override { take(); }
    void close() override {}
    void flush() override {
        const std::lock_guard lock(mMutex);
        ++mFlushCount;
    }

    std::vector<std::string> messages() const {
        const std::lock_guard lock(mMutex);
        std::vector<std::string> texts;
        for (const auto& [line, components] : mWritten) {
            texts.push_back(components.message);
        }
        return texts;
    }
    /// How often the sink was flushed since the last take().
    int flushCount() const {
        const std::lock_guard lock(mMutex);
        return mFlushCount;
    }
    /// All that was written, and forgets it.
    std::vector<std::pair<std::string, LogComponents>> take() {
        const std::lock_guard lock(mMutex);
        mFlushCount = 0;
        return std::exchange(mWritten, {});
    }

private:
    mutable std::mutex mMutex;
    std::vector<std::pair<std::string, LogComponents>> mWritten;
    int mFlushCount = 0;
};

} // namespace tarn::testing
