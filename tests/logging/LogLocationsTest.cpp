#include "loader/ClientFolders.h"
#include "logging/LogLocations.h"
#include "logging/SettingsTable.h"
#include "platform/KnownFolders.h"
#include "utils/FileNames.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

using fileNames::join;

TEST(LogLocations, LieInTheClientsDataFolder) {
    const std::string data = platform::localApplicationDataFolder();
    EXPECT_EQ(logRoot(), join(join(data, "QuorellTarn"), "Logs"));
    EXPECT_EQ(toolLogFolder(), join(logRoot(), "record-converter"));
}

TEST(LogLocations, FollowTheOverrideWithoutALogsFolder) {
    loader::setApplicationFolderOverride("elsewhere");
    EXPECT_EQ(logRoot(), "elsewhere");
    EXPECT_EQ(toolLogFolder(), join("elsewhere", "record-converter"));
    loader::setApplicationFolderOverride("");
    EXPECT_NE(logRoot(), "elsewhere");
}

TEST(LogLocations, TakeTheCurrentFilesNameFromTheSettings) {
    EXPECT_EQ(currentLogFileName(), "current_log.txt");
    SettingsTable::ofProcess().set("/logFile", "run.log");
    EXPECT_EQ(currentLogFileName(), "run.log");
    SettingsTable::ofProcess().remove("/logFile");
    EXPECT_EQ(currentLogFileName(), "current_log.txt");
}

} // namespace
} // namespace tarn
