#pragma once

#include <string>

/// Where the program's log lies. Folders are UTF-8, with the platform's separator and without a
/// trailing one. Any thread.
namespace tarn {

/// "Logs" in the client's data folder; the override of that folder itself when there is one.
std::string logRoot();

/// "record-converter" in the log root.
std::string toolLogFolder();

/// "current_log.txt" unless the settings hold another name under "/logFile".
std::string currentLogFileName();

} // namespace tarn
