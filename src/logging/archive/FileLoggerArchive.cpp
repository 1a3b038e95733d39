#include "log/LogCall.h"
#include "logging/archive/LogArchive.h"
#include "logging/file/FileLogger.h"

#include <exception>
#include <string>

namespace tarn {
namespace {

/// The text of the exception that is being handled.
std::string currentFailure() {
    try {
        throw;
    } catch (const std::exception& exception) {
        return exception.what();
    } catch (...) {
        return "unknown";
    }
}

} // namespace

void FileLogger::archiveLogs(const std::shared_ptr<IFileUtils>& fileUtils,
                             const std::string& destination, const PathPairs& files) {
    try {
        const auto archive = std::make_shared<LogArchive>(fileUtils, destination);
        archive->collect(files);
        // The job knows nothing of this logger, which may be gone before it runs.
        mArchiveExecutor([archive] {
            try {
                archive->write();
            } catch (...) {
                TARN_LOG(RootLoggerLevel::Error,
                         "Log archive failed in callback, with exception: " << currentFailure());
            }
        });
    } catch (...) {
        TARN_LOG(RootLoggerLevel::Error,
                 "Log archive failed, with exception: " << currentFailure());
    }
}

} // namespace tarn
