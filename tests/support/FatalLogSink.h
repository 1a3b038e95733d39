#pragma once

#include "logging/ILogger.h"
#include "support/ErrorWatch.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarn::testing {

/// A sink at the end of the real road that keeps what it is given, and whose Error lines fail the
/// running test unless expectErrorLine (ErrorWatch.h) announced them. Sinks are never unregistered:
/// one for the whole program.
///
///     auto sink = std::make_shared<FatalLogSink>();
///     RootLogger::getInstance().registerLogger(sink);
///     beforeErrorCheck([] { RootLogger::getInstance().flush(); }); // lines come asynchronously
class FatalLogSink : public ILogger {
public:
    using Written = std::pair<std::string, LogComponents>;

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

    std::vector<std::string> lines() const {
        return texts([](const Written& written) { return written.first; });
    }
    std::vector<std::string> messages() const {
        return texts([](const Written& written) { return written.second.message; });
    }
    /// How often the sink was flushed since the last take().
    int flushCount() const {
        const std::lock_guard lock(mMutex);
        return mFlushCount;
    }
    /// All that was written, and forgets it.
    std::vector<Written> take() {
        const std::lock_guard lock(mMutex);
        mFlushCount = 0;
        return std::exchange(mWritten, {});
    }

private:
    std::vector<std::string> texts(const auto& textOf) const {
        const std::lock_guard lock(mMutex);
        std::vector<std::string> texts;
        for (const Written& written : mWritten) {
            texts.emplace_back(textOf(written));
        }
        return texts;
    }

    mutable std::mutex mMutex;
    std::vector<Written> mWritten;
    int mFlushCount = 0;
};

} // namespace tarn::testing
