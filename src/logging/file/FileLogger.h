#pragma once

#include "logging/file/BaseFileLogger.h"

#include <functional>
#include <memory>

namespace tarn {

/// The file logger of the program; always created as a shared object.
class FileLogger : public BaseFileLogger, public std::enable_shared_from_this<FileLogger> {
public:
    using Job = std::function<void()>;
    /// Runs a job somewhere, now or later.
    using ArchiveExecutor = std::function<void(Job)>;

    /// Without an executor, jobs run at once on the thread that hands them in.
    FileLogger(const std::string& folder, std::int64_t size, std::shared_ptr<IFileUtils> fileUtils,
               ArchiveExecutor archiveExecutor, bool keepWhileFailed);
    ~FileLogger() override;

    /// Packs files, given as (name in the archive, path), into a time-stamped zip file in the
    /// destination folder, where the newest five are kept. Copies them at once; the executor zips.
    /// Failures are Error lines. Any thread; link rc_log_archive.
    void archiveLogs(const std::shared_ptr<IFileUtils>& fileUtils, const std::string& destination,
                     const PathPairs& files);

    void moveFiles(const std::shared_ptr<IFileUtils>& fileUtils, const PathPairs& pairs) override;

private:
    ArchiveExecutor mArchiveExecutor;
};

} // namespace tarn
