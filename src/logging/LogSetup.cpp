#include "logging/LogSetup.h"

#include "logging/FileLogger.h"
#include "logging/LogLocations.h"
#include "logging/RootLogger.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "utils/FileUtils.h"

namespace tarn {
namespace {

constexpr std::int64_t kLogFileSize = 100;

void blockListWhenKnown(const std::optional<std::string>& text) {
    if (text && !text->empty()) {
        RootLogger::getInstance().blockListString(*text);
    }
}

} // namespace

void setUpLogging(PreviousRun previousRun) {
    const std::string folder = toolLogFolder();
    const auto fileUtils = std::make_shared<FileUtils>();
    fileUtils->mkdirIfNotExistsRecursive(folder);
    const auto fileLogger =
        std::make_shared<FileLogger>(folder, kLogFileSize, fileUtils, nullptr, true);
    fileLogger->start(previousRun == PreviousRun::PutAside);
    RootLogger& logger = RootLogger::getInstance();
    logger.init(fileLogger, nullptr, folder);
    // The worker registers the sink; lines logged before that are dropped, the next one among them.
    logger.flush();
    logger.setLogLevel(RootLoggerLevel::Unknown); // no effect; part of the common set-up
    logger.setLogLevel(RootLoggerLevel::Debug);
}

void blockListPersonalData() {
    blockListWhenKnown(platform::computerName());
    blockListWhenKnown(platform::userName());
    RootLogger::getInstance().blockListString(platform::profileFolder());
    blockListWhenKnown(platform::homePath());
}

} // namespace tarn
