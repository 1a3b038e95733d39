#include "logging/file/LogFileNames.h"

namespace tarn {
namespace {

constexpr std::string_view kExtension = ".txt";

std::string withoutExtension(std::string name) {
    if (name.ends_with(kExtension)) {
        name.resize(name.size() - kExtension.size());
    }
    return name;
}

std::string olderName(const std::string& name) {
    return withoutExtension(name) + "1.txt";
}

} // namespace

LogFileNames::LogFileNames(const std::string& folder, const std::string& currentName)
    : lock(folder + withoutExtension(currentName) + ".lock"),
      current(folder + currentName),
      older(folder + olderName(currentName)),
      header(folder + "current_log_header.txt"),
      lastRunCurrent(folder + "last_run_" + currentName),
      lastRunOlder(folder + "last_run_" + olderName(currentName)),
      lastRunHeader(folder + "last_run_current_log_header.txt"),
      coutCurrent(folder + "cout_current_log.txt"),
      coutPrevious(folder + "cout_prev_log.txt"),
      coutLastRunCurrent(folder + "cout_last_run_current_log.txt"),
      coutLastRunPrevious(folder + "cout_last_run_prev_log.txt"),
      previous(folder + "prev_log.txt"),
      lastRunPrevious(folder + "last_run_prev_log.txt") {
}

std::vector<std::pair<std::string, std::string>> LogFileNames::previousRunMoves() const {
    return {{current, lastRunCurrent},
            {older, lastRunOlder},
            {header, lastRunHeader},
            {coutCurrent, coutLastRunCurrent},
            {coutPrevious, coutLastRunPrevious}};
}

std::vector<std::string> LogFileNames::clearedFiles() const {
    return {lastRunPrevious,     previous,     coutLastRunCurrent,
            coutLastRunPrevious, coutCurrent,  coutPrevious,
            lastRunCurrent,      lastRunOlder, older,
            lastRunHeader,       header};
}

} // namespace tarn
