#include "client/LogLocations.h"

#include "client/ClientFolders.h"
#include "client/SettingsTable.h"
#include "utils/FileNames.h"

namespace tarn {

std::string logRoot() {
    const std::string override = loader::applicationFolderOverride();
    return override.empty() ? fileNames::join(loader::applicationFolder(), "Logs") : override;
}

std::string toolLogFolder() {
    return fileNames::join(logRoot(), "record-converter");
}

std::string currentLogFileName() {
    return SettingsTable::ofProcess().value("/logFile").value_or("current_log.txt");
}

} // namespace tarn
