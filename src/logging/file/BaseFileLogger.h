#pragma once

#include "logging/ILogger.h"
#include "logging/file/LogFile.h"
#include "logging/file/RunSlot.h"
#include "utils/IFileUtils.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

/// Writes log lines into a current file, which becomes the older file when its size limit is
/// reached. While the file cannot be written, the newest lines are kept in memory and written when
/// it can be again: log() tries that from time to time, flush() and resume() at once. Failures are
/// told on the standard error stream, never to the root logger. Not thread-safe: once registered,
/// only the root logger's worker calls it.
class BaseFileLogger : public ILogger {
public:
    using PathPairs = std::vector<std::pair<std::string, std::string>>;

    static constexpr std::int64_t kBytesPerSizeUnit = 500'000;
    static constexpr std::size_t kMaxKeptLines = 5000;
    static constexpr std::size_t kMostUnwritten = 65536; ///< bytes

    /// The current file holds at most `size` * 500,000 bytes.
    BaseFileLogger(const std::string& folder, std::int64_t size,
                   std::shared_ptr<IFileUtils> fileUtils, bool keepWhileFailed);
    BaseFileLogger(const BaseFileLogger&) = delete;
    BaseFileLogger& operator=(const BaseFileLogger&) = delete;
    ~BaseFileLogger() override;

    void log(const std::string& line, const LogComponents& components) override;
    void clearLogs() override;
    void close() override;
    void flush() override;
    /// Full paths of the current and the older file, joined by ";".
    virtual std::string getLogFiles() const;
    /// Reopens the file after a failure and writes the lines kept meanwhile.
    virtual void resume();
    /// Renames each source to its target, which is removed before.
    virtual void moveFiles(const std::shared_ptr<IFileUtils>& fileUtils, const PathPairs& pairs);

    /// Opens the current file, once and before anything is logged. With `movePreviousRun` an
    /// earlier run's files are put aside before; without it the current file is continued. While a
    /// running program holds it, the lines go into files beside it (RunSlot.h).
    void start(bool movePreviousRun);

    /// How often log() tries to write again while the file is failed; a second unless set.
    void setRetryInterval(std::chrono::milliseconds interval) { mRetryInterval = interval; }

protected:
    const LogFileNames& names() const { return mRun.names(); }

private:
    enum class Report { ToStandardError, Nothing };

    bool isBlocked() const { return mKeepWhileFailed && !mFile.isGood(); }
    LogFile::Mode prepareFirstOpening();
    bool openFile(LogFile::Mode mode, Report report = Report::ToStandardError);
    bool writeLine(const std::string& line);
    void flushFile();
    void switchFiles();
    bool putAsideCurrentFile();
    void keepUnwrittenLines();
    void keepLine(const std::string& line);
    void dropOldestLines(std::size_t most);
    void tryToResume(Report report);
    void resumeWhenDue();

    std::shared_ptr<IFileUtils> mFileUtils;
    LogFile mFile;
    bool mHeaderSaved = false;
    std::string mFolder;
    RunSlot mRun;
    std::int64_t mMaxFileSize;
    std::int64_t mSwitchSize; ///< the limit, or above it when switching failed at the limit
    LogFile::Mode mReopenMode = LogFile::Mode::Append;
    bool mReopenPending = false;
    bool mMovePreviousRun = false;
    bool mHasMoved = false;  ///< what a previous run left
    bool mHasOpened = false; ///< the current file, at any time
    const bool mKeepWhileFailed;
    bool mWriteFailureReported = false;
    std::deque<std::string> mKeptLines;
    std::chrono::milliseconds mRetryInterval{1000};
    std::chrono::steady_clock::time_point mNextRetry;
};

} // namespace tarn
