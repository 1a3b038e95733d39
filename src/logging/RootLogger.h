#pragma once

#include "logging/ILogger.h"
#include "logging/Level.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tarn {

class IAsyncQueue;

/// The one logging hub of the process. All operations may be called from any thread and none of
/// them throws but for a failing mutex. Sinks, blocklist and output belong to the worker of the
/// logger's own queue.
class RootLogger {
public:
    /// Created on first use, lives until the process ends and is never destroyed. An empty `queue`
    /// makes the logger create its own, named "RootLogger".
    static RootLogger& getInstance(std::shared_ptr<IAsyncQueue> queue = nullptr);

    /// Registers the file sink, installs the engine sink when there is one, keeps the folder.
    void init(std::shared_ptr<ILogger> fileLogger, std::shared_ptr<ILogger> engineLogger,
              std::string logFolder);
    /// Asynchronous: lines logged before the worker has registered the first sink are dropped.
    void registerLogger(std::shared_ptr<ILogger> logger);
    /// Raises or lowers the threshold; Unknown is ignored.
    void setLogLevel(RootLoggerLevel::Level level);
    bool isEnabled(RootLoggerLevel::Level level) const noexcept;
    /// Captures a record and queues it; formatting and output happen on the worker. Never throws.
    static void log(std::string message, RootLoggerLevel::Level level, std::int32_t line,
                    std::string file, std::string function, std::string tag);
    /// Masks `text` (3 characters or more) in every line not yet written. Asynchronous.
    void blockListString(std::string text);
    /// A copy of `text` with every blocklisted string masked. Waits for the worker.
    std::string filterStrings(const std::string& text);
    /// Waits until what was queued before is written and flushed, for at most 5 seconds.
    void flush();
};

} // namespace tarn
