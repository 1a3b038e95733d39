#include "launcher/ArchiveLogs.h"

#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "logging/LogArchive.h"
#include "logging/LogCall.h"
#include "logging/LogFileNames.h"
#include "logging/LogLocations.h"
#include "logging/LogSetup.h"
#include "logging/RootLogger.h"
#include "platform/Files.h"
#include "platform/Terminal.h"
#include "utils/FileUtils.h"

#include <memory>
#include <stdexcept>

namespace launcher {
namespace {

tarn::LogArchive::Files existingLogFiles(const tarn::IFileUtils& files) {
    const tarn::LogFileNames names(files.joinPath(tarn::toolLogFolder(), ""),
                                   tarn::currentLogFileName());
    tarn::LogArchive::Files existing;
    for (const std::string& path : {names.current, names.older, names.header, names.lastRunCurrent,
                                    names.lastRunOlder, names.lastRunHeader}) {
        if (files.exists(path)) {
            existing.emplace_back(files.fileNameOfPath(path), path);
        }
    }
    return existing;
}

tarn::ZipResult makeArchive(const std::shared_ptr<tarn::FileUtils>& files,
                            const std::string& destination) {
    try {
        const tarn::LogArchive archive(files, destination);
        archive.collect(existingLogFiles(*files));
        return archive.write();
    } catch (const std::runtime_error& error) {
        TARN_LOG(tarn::RootLoggerLevel::Error,
                 "Log archive failed, with exception: " << error.what());
        return {.level = tarn::RootLoggerLevel::Error, .errorCode = 0, .text = error.what()};
    }
}

} // namespace

ExitStatus archiveLogs(const std::string& destination) {
    const auto files = std::make_shared<tarn::FileUtils>();
    if (!files->dirExists(destination)) {
        return refuse(inQuotes(destination) + " is no folder: name one that exists.");
    }
    if (!tarn::platform::isFolderWritable(destination)) {
        return refuse("The folder " + inQuotes(destination) +
                      " cannot be written: name another one, or make it writable.");
    }
    tarn::setUpLogging(tarn::PreviousRun::Continue);
    tarn::blockListPersonalData();
    tarn::RootLogger::getInstance().flush();
    const tarn::ZipResult result = makeArchive(files, destination);
    tarn::RootLogger::getInstance().flush();
    if (!result.succeeded()) {
        say("The logs could not be archived into " + inQuotes(destination) + ": " + result.text +
            ".");
        return Failed;
    }
    tarn::platform::writeTerminal(tarn::platform::TerminalStream::Output, result.text + "\n");
    return Converted;
}

} // namespace launcher
