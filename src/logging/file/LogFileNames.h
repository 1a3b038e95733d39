#pragma once

#include "utils/IFileUtils.h"

#include <string>
#include <utility>
#include <vector>

namespace tarn {

/// Full paths of all files that a file logger knows of. The previous run's names have "last_run_"
/// in front.
struct LogFileNames {
    /// `folder` ends with a separator, or with what stands before each name; `currentName` is
    /// "current_log.txt" unless replaced.
    LogFileNames(const std::string& folder, const std::string& currentName);

    /// (source, target) pairs that put a previous run's files aside, in order.
    std::vector<std::pair<std::string, std::string>> previousRunMoves() const;
    /// What clearing the logs removes, in order. The current file is emptied instead.
    std::vector<std::string> clearedFiles() const;

    std::string lock; ///< held by the run that has these files
    std::string current;
    std::string older; ///< the current name with 1 before ".txt"
    std::string header;
    std::string lastRunCurrent;
    std::string lastRunOlder;
    std::string lastRunHeader;
    // Console captures of the wider client, and the names of an older scheme.
    std::string coutCurrent;
    std::string coutPrevious;
    std::string coutLastRunCurrent;
    std::string coutLastRunPrevious;
    std::string previous;
    std::string lastRunPrevious;
};

} // namespace tarn
