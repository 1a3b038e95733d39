#include "client/ClientFolders.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "logging/file/LogSetup.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn {
namespace {

// One test: logging is set up once in a process.
TEST(LogSetup, MasksPersonalDataInTheFilesThatItOpensInWhateverFormItComes) {
    const testing::TemporaryFolder folder;
    loader::setApplicationFolderOverride(folder.path());
    const std::string logs = folder.makeFolder("record-converter");
    setUpLogging();
    blockListPersonalData();
    std::string personal;
    std::string masked;
    auto texts = platform::otherPersonalTexts();
    texts.insert(texts.end(),
                 {platform::profileFolder(), platform::computerName().value_or(""),
                  platform::userName().value_or(""), platform::homePath().value_or("")});
    if (!platform::isValidUtf8(platform::profileFolder())) {
        texts.insert(texts.end(), {"/home/Jörg Müller", "/home/J\\xf6rg M\\xfcller",
                                   "/home/J\uFFFDrg M\uFFFDller", "games"});
    }
    for (const std::string& text : texts) {
        personal += text + "|";
        masked += (text.size() < 3 ? text : "********") + "|";
    }
    TARN_LOG(RootLoggerLevel::Debug, "personal: " << personal);
    RootLogger::getInstance().flush();
    EXPECT_THAT(testing::readFile(logs + "/current_log.txt"),
                ::testing::HasSubstr("::personal: " + masked + "\n"));
}

} // namespace
} // namespace tarn
