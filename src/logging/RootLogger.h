#pragma once

#include "log/Level.h"
#include "logging/ILogger.h"
#include "logging/LevelFilter.h"
#include "logging/RecordStream.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class IAsyncQueue;
class LogOutput;
class TaskFunction;

/// The one logging hub of the process. All operations may be called from any thread and none of
/// them throws but for a failing mutex or want of memory; log() never does. Sinks, blocklist and
/// output belong to the worker of the logger's own queue.
class RootLogger {
public:
    /// Created on first use, lives until the process ends and is never destroyed. An empty `queue`
    /// makes the logger create its own, named "RootLogger"; a queue that is given must never be
    /// stopped. Creation makes this logger the receiver of every log call, unless a hook is set.
    static RootLogger& getInstance(const std::shared_ptr<IAsyncQueue>& queue = nullptr);
    RootLogger(const RootLogger&) = delete;
    RootLogger& operator=(const RootLogger&) = delete;

    /// Registers the file sink, installs the engine sink when there is one, keeps the folder.
    void init(std::shared_ptr<ILogger> fileLogger, std::shared_ptr<ILogger> engineLogger,
              std::string logFolder);
    /// Asynchronous: lines logged before the worker has registered the first sink are dropped.
    void registerLogger(std::shared_ptr<ILogger> logger);
    /// Raises or lowers the threshold; Unknown is ignored.
    void setLogLevel(RootLoggerLevel::Level level);
    bool isEnabled(RootLoggerLevel::Level level) const noexcept;
    /// From the next line on that is written; UTC unless set.
    void setUseLocalTime(bool uses) noexcept;
    /// Captures a record and queues it; formatting and output happen on the worker. Never throws.
    /// The record has copies of all texts.
    static void log(std::string_view message, RootLoggerLevel::Level level, std::int32_t line,
                    std::string_view file, std::string_view function,
                    std::string_view tag) noexcept;
    /// Masks `text` (3 characters or more) in every line not yet written. Asynchronous.
    void blockListString(std::string text);
    /// A copy of `text` with every blocklisted string masked. Waits for the worker.
    std::string filterStrings(const std::string& text);
    /// Waits until what was queued before is written and flushed, for at most 5 seconds.
    void flush();

private:
    explicit RootLogger(const std::shared_ptr<IAsyncQueue>& queue);
    ~RootLogger();

    static RootLogger& create(const std::shared_ptr<IAsyncQueue>& queue);
    void capture(std::string_view message, RootLoggerLevel::Level level, std::int32_t line,
                 std::string_view file, std::string_view function, std::string_view tag);
    void postInOrder(const std::string& name, TaskFunction&& task);
    void writeBatch(RecordStream::Batch& batch);
    void addBlockedStrings();

    LevelFilter mLevels;
    std::atomic<bool> mActive{false}; ///< a sink is registered
    std::unique_ptr<LogOutput> mOutput;
    std::unique_ptr<RecordStream> mRecords;
    std::mutex mBlockedMutex;
    std::vector<std::string> mToBeBlocked; ///< until the worker comes to it
    std::atomic<bool> mMustAddBlockedStrings{false};
    std::string mLogFolder;
    std::shared_ptr<IAsyncQueue> mQueue;
};

} // namespace tarn
