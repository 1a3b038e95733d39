#include "logging/file/RunSlot.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

constexpr int kMostRuns = 10'000;

/// What stands before the names of the files of a run.
std::string prefixOf(int run) {
    return run == 1 ? "" : "run" + std::to_string(run) + "_";
}

} // namespace

RunSlot::RunSlot(std::string folder, std::string currentName)
    : mFolder(std::move(folder)),
      mCurrentName(std::move(currentName)),
      mNames(mFolder, mCurrentName) {
}

bool RunSlot::take() {
    for (int run = 1; !mIsTaken && run < kMostRuns; ++run) {
        const LogFileNames names(mFolder + prefixOf(run), mCurrentName);
        const auto result = mLock.take(names.lock);
        if (result == platform::FileLock::Result::Unavailable) {
            break;
        }
        if (result == platform::FileLock::Result::Taken) {
            mNames = names;
            mIsTaken = true;
        }
    }
    return mIsTaken;
}

std::vector<std::string> existingLogFiles(const IFileUtils& files, const std::string& folder,
                                          const std::string& currentName) {
    const std::string path = files.joinPath(folder, "");
    const auto present = files.getFiles(folder);
    const auto isPresent = [&](const std::string& file) {
        return std::ranges::find(present, files.fileNameOfPath(file)) != present.end();
    };
    std::vector<std::string> existing;
    // A lock shows that a run had the set; it stays when the run has ended.
    for (int run = 1; run < kMostRuns; ++run) {
        const LogFileNames names(path + prefixOf(run), currentName);
        for (const std::string& file :
             {names.current, names.older, names.header, names.lastRunCurrent, names.lastRunOlder,
              names.lastRunHeader}) {
            if (isPresent(file)) {
                existing.push_back(file);
            }
        }
        if (run > 1 && !isPresent(names.lock)) {
            break;
        }
    }
    return existing;
}

} // namespace tarn
