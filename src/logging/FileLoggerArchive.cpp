#include "logging/FileLogger.h"
#include "logging/LogArchive.h"
#include "logging/LogCall.h"

#include <exception>

namespace tarn {

void FileLogger::archiveLogs(const std::shared_ptr<IFileUtils>& fileUtils,
                             const std::string& destination, const PathPairs& files) {
    try {
        const auto archive = std::make_shared<LogArchive>(fileUtils, destination);
        archive->collect(files);
        // The job knows nothing of this logger, which may be gone before it runs.
        mArchiveExecutor([archive] {
            try {
                archive->write();
            } catch (const std::exception& exception) {
                TARN_LOG(RootLoggerLevel::Error,
                         "Log archive failed in callback, with exception: " << exception.what());
            }
        });
    } catch (const std::exception& exception) {
        TARN_LOG(RootLoggerLevel::Error,
                 "Log archive failed, with exception: " << exception.what());
    }
}

} // namespace tarn
