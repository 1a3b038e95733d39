#pragma once

#include "logging/file/LogFileNames.h"
#include "platform/FileLock.h"
#include "utils/IFileUtils.h"

#include <string>

namespace tarn {

/// The set of log files that one run has for itself as long as it lives: the usual one, or, while a
/// running program holds that, the next free one beside it, whose names begin with "run2_", "run3_"
/// and so on. Not thread-safe.
class RunSlot {
public:
    /// `folder` ends with a separator.
    RunSlot(std::string folder, std::string currentName);

    /// Takes the first set that nobody holds. False when the folder cannot take a lock: the run
    /// then has the usual set, and shares it if need be.
    bool take();
    bool isTaken() const { return mIsTaken; }
    const LogFileNames& names() const { return mNames; }

private:
    std::string mFolder;
    std::string mCurrentName;
    platform::FileLock mLock;
    LogFileNames mNames;
    bool mIsTaken = false;
};

/// The files of every run that are there, those of the usual set first.
std::vector<std::string> existingLogFiles(const IFileUtils& files, const std::string& folder,
                                          const std::string& currentName);

} // namespace tarn
