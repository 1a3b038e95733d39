#include "logging/file/BaseFileLogger.h"

#include "client/LogLocations.h"
#include "logging/file/SessionHeader.h"

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
      mRun(mFolder, currentLogFileName()),
      mMaxFileSize(size * kBytesPerSizeUnit),
      mSwitchSize(mMaxFileSize),
      mKeepWhileFailed(keepWhileFailed) {
}

BaseFileLogger::~BaseFileLogger() = default;

void BaseFileLogger::start(bool movePreviousRun) {
    mMovePreviousRun = movePreviousRun;
    openFile(prepareFirstOpening());
}

/// Also when the folder comes late: what a previous run left there is to survive just so.
LogFile::Mode BaseFileLogger::prepareFirstOpening() {
    mRun.take();
    if (!mMovePreviousRun) {
        return LogFile::Mode::Append;
    }
    auto pairs = names().previousRunMoves();
    if (mHasMoved) { // what is in its new place already must not be removed
        std::erase_if(pairs, [&](const auto& pair) { return !mFileUtils->exists(pair.first); });
    }
    moveFiles(mFileUtils, pairs);
    mHasMoved = mFileUtils->dirExists(mFolder);
    // A file that cannot be renamed may be copied. Emptying the only copy would lose its lines.
    return !mFileUtils->exists(names().current) ||
                   mFileUtils->copyFile(names().current, names().lastRunCurrent)
               ? LogFile::Mode::Truncate
               : LogFile::Mode::Append;
}

void BaseFileLogger::moveFiles(const std::shared_ptr<IFileUtils>& fileUtils,
                               const PathPairs& pairs) {
    for (const auto& [source, target] : pairs) {
        fileUtils->remove(target);
        fileUtils->rename(source, target);
    }
}

bool BaseFileLogger::openFile(LogFile::Mode mode, Report report) {
    if (mFile.open(names().current, mode)) {
        mHasOpened = true;
        mReopenPending = false;
        return true;
    }
    if (report == Report::ToStandardError) {
        std::cerr << "Failed to open log file at :" << names().current << std::endl;
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
    // The turns may always fall to another logger's lines.
    if (isFlushDue() || mFile.unwritten() > kMostUnwritten) {
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
        std::cerr << "Failed to write log file at :" << names().current << std::endl;
    }
    mKeptLines.insert(mKeptLines.begin(), std::make_move_iterator(lines.begin()),
                      std::make_move_iterator(lines.end()));
    dropOldestLines(kMaxKeptLines);
    mReopenMode = LogFile::Mode::Append;
    mReopenPending = true;
    mNextRetry = std::chrono::steady_clock::now() + mRetryInterval;
}

void BaseFileLogger::keepLine(const std::string& line) {
    dropOldestLines(kMaxKeptLines - 1);
    mKeptLines.push_back(line);
}

void BaseFileLogger::dropOldestLines(std::size_t most) {
    while (mKeptLines.size() > most) {
        mKeptLines.pop_front();
    }
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
        saveSessionHeader(names().current, names().header);
        mHeaderSaved = true;
    }
    if (mFileUtils->exists(names().older)) {
        mFileUtils->remove(names().older);
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
    if (mFileUtils->renameWithMessage(names().current, names().older, &reason)) {
        return true;
    }
    std::cerr << "Failed to rename log file. " << reason << std::endl;
    return mFileUtils->copyFile(names().current, names().older);
}

void BaseFileLogger::clearLogs() {
    for (const std::string& file : names().clearedFiles()) {
        mFileUtils->remove(file);
    }
    mFile.discard();
    mKeptLines.clear();
    mSwitchSize = mMaxFileSize;
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
    return names().current + ";" + names().older;
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
    if (!mHasOpened) {
        mReopenMode = prepareFirstOpening();
    }
    if (!openFile(mReopenMode, report)) {
        return;
    }
    // A failure keeps the lines that were handed to the file and not written; the rest follows
    // them.
    auto lines = std::exchange(mKeptLines, {});
    while (!lines.empty() && mFile.isGood() && writeLine(lines.front())) {
        lines.pop_front();
    }
    mKeptLines.insert(mKeptLines.end(), std::make_move_iterator(lines.begin()),
                      std::make_move_iterator(lines.end()));
    flushFile();
}

} // namespace tarn
