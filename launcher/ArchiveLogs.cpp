#include "launcher/ArchiveLogs.h"

#include "client/LogLocations.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "logging/archive/LogArchive.h"
#include "logging/file/LogSetup.h"
#include "logging/file/RunSlot.h"
#include "platform/Files.h"
#include "platform/Terminal.h"
#include "utils/FileUtils.h"

#include <exception>
#include <memory>

namespace launcher {
namespace {

tarn::ZipResult makeArchive(const std::shared_ptr<tarn::FileUtils>& files,
                            const std::string& destination) {
    try {
        tarn::LogArchive::Files logs;
        for (const std::string& path :
             tarn::existingLogFiles(*files, tarn::toolLogFolder(), tarn::currentLogFileName())) {
            logs.emplace_back(files->fileNameOfPath(path), path);
        }
        tarn::LogArchive archive(files, destination);
        archive.collect(logs);
        return archive.write();
    } catch (const std::exception& error) {
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
        return ExitStatus::Failed;
    }
    tarn::platform::writeTerminal(tarn::platform::TerminalStream::Output,
                                  visible(result.text) + "\n");
    return ExitStatus::Complete;
}

} // namespace launcher
