#include "logging/BaseFileLogger.h"

#include "logging/LogLocations.h"
#include "logging/SessionHeader.h"

#include <atomic>
#include <iostream>
#include <utility>

namespace tarn {
namespace {

// For the whole process, not for each logger: the first, third, fifth... line written is followed
// by a flush.
std::atomic<bool> flushAfterNextLine{true};

bool isFlushDue() {
    const bool due = flushAfterNextLine.load(std::memory_order_relaxed);
    flushAfterNextLine.store(!due, std::memory_order_relaxed);
    return due;
}

std::string withSeparator(const std::string& folder, const IFileUtils& fileUtils) {
    const std::string separator = fileUtils.pathSeparator();
    return folder.empty() || folder.ends_with(separator) ? folder : folder + separator;
}

} // namespace

BaseFileLogger::BaseFileLogger(const std::string& folder, std::int64_t size,
                               std::shared_ptr<IFileUtils> fileUtils, bool keepWhileFailed)
    : mFileUtils(std::move(fileUtils)),
      mFolder(withSeparator(folder, *mFileUtils)),
      mNames(mFolder, currentLogFileName()),
      mMaxFileSize(size * kBytesPerSizeUnit),
      mSwitchSize(mMaxFileSize),
      mKeepWhileFailed(keepWhileFailed) {
}

BaseFileLogger::~BaseFileLogger() {
    mFile.flush();
}

void BaseFileLogger::start(bool movePreviousRun) {
    mMovePreviousRun = movePreviousRun;
    if (movePreviousRun) {
        moveFiles(mFileUtils, mNames.previousRunMoves());
    }
    openFile(movePreviousRun ? LogFile::Mode::Truncate : LogFile::Mode::Append);
}

void BaseFileLogger::moveFiles(const std::shared_ptr<IFileUtils>& fileUtils,
                               const PathPairs& pairs) {
    for (const auto& [source, target] : pairs) {
        fileUtils->remove(target);
        fileUtils->rename(source, target);
    }
}

bool BaseFileLogger::openFile(LogFile::Mode mode, Report report) {
    if (mFile.open(mNames.current, mode)) {
        mMovePreviousRun = false;
        mReopenPending = false;
        return true;
    }
    if (report == Report::ToStandardError) {
        std::cerr << "Failed to open log file at :" << mNames.current << std::endl;
    }
    if (mKeepWhileFailed) {
        mReopenMode = mode;
        mReopenPending = true;
        mNextRetry = std::chrono::steady_clock::now() + mRetryInterval;
    }
    return false;
}

void BaseFileLogger::log(const std::string& line, const LogComponents& /*components*/) {
    if (!isBlocked() && writeLine(line)) {
        return;
    }
    keepLine(line);
    resumeWhenDue();
}

/// False when the line is to be kept for later.
bool BaseFileLogger::writeLine(const std::string& line) {
    if (mFile.position() > mSwitchSize - static_cast<std::int64_t>(line.size())) {
        switchFiles();
        if (isBlocked()) {
            return false;
        }
    }
    mFile.add(line);
    if (isFlushDue()) {
        flushFile();
    }
    return true;
}

void BaseFileLogger::flushFile() {
    if (mFile.flush()) {
        mWriteFailureReported = false;
    } else {
        keepUnwrittenLines();
    }
}

void BaseFileLogger::keepUnwrittenLines() {
    auto lines = mFile.takeUnwritten();
    if (!mKeepWhileFailed) {
        return;
    }
    if (!std::exchange(mWriteFailureReported, true)) {
        std::cerr << "Failed to write log file at :" << mNames.current << std::endl;
    }
    mKeptLines.insert(mKeptLines.begin(), std::make_move_iterator(lines.begin()),
                      std::make_move_iterator(lines.end()));
    mReopenMode = LogFile::Mode::Append;
    mReopenPending = true;
    mNextRetry = std::chrono::steady_clock::now() + mRetryInterval;
}

void BaseFileLogger::keepLine(const std::string& line) {
    while (mKeptLines.size() >= kMaxKeptLines) {
        mKeptLines.pop_front();
    }
    mKeptLines.push_back(line);
}

void BaseFileLogger::switchFiles() {
    if (isBlocked()) {
        return;
    }
    if (!mFile.close() && mKeepWhileFailed) {
        keepUnwrittenLines();
        return;
    }
    if (!mHeaderSaved) {
        saveSessionHeader(mNames.current, mNames.header);
        mHeaderSaved = true;
    }
    if (mFileUtils->exists(mNames.older)) {
        mFileUtils->remove(mNames.older);
    }
    if (putAsideCurrentFile()) {
        mSwitchSize = mMaxFileSize;
        openFile(LogFile::Mode::Truncate);
    } else if (openFile(LogFile::Mode::Append)) {
        // Growing past the limit loses nothing; emptying the only copy would. The next try waits,
        // because a failed renaming is itself logged.
        mSwitchSize = mFile.position() + mMaxFileSize;
    }
}

bool BaseFileLogger::putAsideCurrentFile() {
    std::string reason;
    if (mFileUtils->renameWithMessage(mNames.current, mNames.older, &reason)) {
        return true;
    }
    std::cerr << "Failed to rename log file. " << reason << std::endl;
    return mFileUtils->copyFile(mNames.current, mNames.older);
}

void BaseFileLogger::clearLogs() {
    for (const std::string& file : mNames.clearedFiles()) {
        mFileUtils->remove(file);
    }
    mFile.discard();
    mKeptLines.clear();
    openFile(LogFile::Mode::Truncate);
}

void BaseFileLogger::close() {
    if (!isBlocked() && !mFile.close()) {
        keepUnwrittenLines();
    }
}

void BaseFileLogger::flush() {
    tryToResume(Report::Nothing);
    if (!isBlocked()) {
        flushFile();
    }
}

std::string BaseFileLogger::getLogFiles() const {
    return mNames.current + ";" + mNames.older;
}

void BaseFileLogger::resume() {
    tryToResume(Report::ToStandardError);
}

void BaseFileLogger::resumeWhenDue() {
    if (std::chrono::steady_clock::now() >= mNextRetry) {
        tryToResume(Report::Nothing);
    }
}

void BaseFileLogger::tryToResume(Report report) {
    if (!isBlocked() || !mReopenPending) {
        return;
    }
    mFileUtils->mkdirIfNotExistsRecursive(mFolder);
    if (mMovePreviousRun && mFileUtils->exists(mNames.current)) {
        // The start could not put the previous run's file aside, and opening would empty it.
        moveFiles(mFileUtils, {mNames.previousRunMoves().front()});
    }
    if (!openFile(mReopenMode, report)) {
        return;
    }
    while (!mKeptLines.empty() && mFile.isGood()) {
        const std::string line = std::move(mKeptLines.front());
        mKeptLines.pop_front();
        if (!writeLine(line)) {
            mKeptLines.push_front(line);
        }
    }
    flushFile();
}

} // namespace tarn
