#include "logging/file/FileLogger.h"

namespace tarn {

FileLogger::FileLogger(const std::string& folder, std::int64_t size,
                       std::shared_ptr<IFileUtils> fileUtils, ArchiveExecutor archiveExecutor,
                       bool keepWhileFailed)
    : BaseFileLogger(folder, size, std::move(fileUtils), keepWhileFailed),
      mArchiveExecutor(archiveExecutor ? std::move(archiveExecutor)
                                       : ArchiveExecutor([](const Job& job) { job(); })) {
}

FileLogger::~FileLogger() = default;

void FileLogger::moveFiles(const std::shared_ptr<IFileUtils>& fileUtils, const PathPairs& pairs) {
    BaseFileLogger::moveFiles(fileUtils, pairs);
}

} // namespace tarn
