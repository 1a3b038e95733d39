#include "loader/ClientFolders.h"
#include "logging/LogCall.h"
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

// One test: logging is set up once in a process.
TEST(LogSetup, MasksPersonalDataInTheFilesThatItOpens) {
    const testing::TemporaryFolder folder;
    loader::setApplicationFolderOverride(folder.path());
    const std::string logs = folder.makeFolder("record-converter");
    folder.write("record-converter/current_log.txt", "previous run");

    setUpLogging();
    blockListPersonalData();
    RootLogger::getInstance().flush();
    std::string enabled;
    for (int level = RootLoggerLevel::Unknown; level <= RootLoggerLevel::Test; ++level) {
        const bool isEnabled = isLogEnabled(static_cast<RootLoggerLevel::Level>(level));
        enabled += isEnabled ? std::to_string(level) : "";
    }
    EXPECT_EQ(enabled, "23457") << "neither Trace nor Private";
    std::string personal;
    std::string masked;
    for (const std::string& text :
         {platform::profileFolder(), platform::computerName().value_or(""),
          platform::userName().value_or(""), platform::homePath().value_or("")}) {
        personal += text + "|";
        masked += (text.size() < 3 ? text : "********") + "|";
    }
    TARN_LOG(RootLoggerLevel::Debug, "personal: " << personal);
    RootLogger::getInstance().flush();
    EXPECT_THAT(testing::readFile(logs + "/current_log.txt"),
                ::testing::HasSubstr("::personal: " + masked + "\n"));
    EXPECT_EQ(testing::readFile(logs + "/last_run_current_log.txt"), "previous run");
}

} // namespace
} // namespace tarn
