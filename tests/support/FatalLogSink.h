#pragma once

#include "logging/ILogger.h"

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

    void log(const std::string& line, const LogComponents& components) override;
    void clearLogs() override;
    void close() override {}
    void flush() override;

    std::vector<std::string> lines() const;
    std::vector<std::string> messages() const;
    /// How often the sink was flushed since the last take().
    int flushCount() const;
    /// All that was written, and forgets it.
    std::vector<Written> take();

private:
    mutable std::mutex mMutex;
    std::vector<Written> mWritten;
    int mFlushCount = 0;
};

} // namespace tarn::testing
