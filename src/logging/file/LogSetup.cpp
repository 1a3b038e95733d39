#include "logging/file/LogSetup.h"

#include "client/LogLocations.h"
#include "logging/ControlCharacters.h"
#include "logging/RootLogger.h"
#include "logging/file/FileLogger.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "platform/Utf8.h"
#include "utils/FileUtils.h"

namespace tarn {
namespace {

constexpr std::int64_t kLogFileSize = 100;

/// A text that is no UTF-8 may also come as what others make of it.
void blockListInEveryForm(const std::string& text) {
    RootLogger& logger = RootLogger::getInstance();
    logger.blockListString(text);
    if (platform::isValidUtf8(text)) {
        return;
    }
    std::string fromLatin1;
    for (const char byte : text) {
        platform::appendUtf8(fromLatin1, static_cast<unsigned char>(byte));
    }
    std::string writtenOut = text;
    escapeControlCharacters(writtenOut);
    for (std::string form : {fromLatin1, writtenOut, platform::toUtf8(platform::toWide(text))}) {
        logger.blockListString(std::move(form));
    }
}

void blockListWhenKnown(const std::optional<std::string>& text) {
    if (text && !text->empty()) {
        blockListInEveryForm(*text);
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
    blockListInEveryForm(platform::profileFolder());
    blockListWhenKnown(platform::homePath());
    for (const std::string& text : platform::otherPersonalTexts()) {
        blockListWhenKnown(text);
    }
}

} // namespace tarn
