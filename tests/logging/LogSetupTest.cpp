#include "loader/ClientFolders.h"
#include "logging/LogCall.h"
#include "logging/LogLocations.h"
#include "logging/LogSetup.h"
#include "logging/RootLogger.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

// One test: logging is set up once in a process.
TEST(LogSetup, MasksPersonalDataInTheFilesThatItOpens) {
    const testing::TemporaryFolder folder;
    loader::setApplicationFolderOverride(folder / "client");
    const std::string file = FileUtils().joinPath(toolLogFolder(), "current_log.txt");
    ASSERT_TRUE(FileUtils().mkdirIfNotExistsRecursive(toolLogFolder()));
    ASSERT_TRUE(FileUtils().writeOneLine(file, "previous run"));

    setUpLogging();
    blockListPersonalData();
    RootLogger::getInstance().flush();
    EXPECT_TRUE(isLogEnabled(RootLoggerLevel::Debug));
    EXPECT_FALSE(isLogEnabled(RootLoggerLevel::Trace));
    std::string personal = platform::profileFolder();
    for (const auto& text :
         {platform::computerName(), platform::userName(), platform::homePath()}) {
        personal += " " + text.value_or("");
    }
    TARN_LOG(RootLoggerLevel::Debug, "who and where: " << personal << " end");
    RootLogger::getInstance().flush();

    const std::string log = testing::readFile(file);
    EXPECT_THAT(log, AllOf(HasSubstr("LogSetupTest:"), HasSubstr("::who and where: ********"),
                           HasSubstr(" end\n")));
    for (const std::string& text :
         {platform::profileFolder(), platform::computerName().value_or(""),
          platform::userName().value_or("")}) {
        if (text.size() >= 3) {
            EXPECT_THAT(log, Not(HasSubstr(text)));
        }
    }
    EXPECT_EQ(testing::readFile(FileUtils().joinPath(toolLogFolder(), "last_run_current_log.txt")),
              "previous run\n");
}

} // namespace
} // namespace tarn
