#pragma once

#include "logging/archive/ZipFolder.h"
#include "platform/OpenFolder.h"
#include "utils/IFileUtils.h"

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

/// One archive of log files in a destination folder, where the newest five are kept. First
/// collect(), then write(), perhaps on another thread. Several may be made in one folder at once.
/// The work folder in between is for this user alone, and goes with the object at the latest.
class LogArchive {
public:
    /// (name inside the archive, path of the file).
    using Files = std::vector<std::pair<std::string, std::string>>;

    static constexpr std::size_t kKeptArchives = 5;

    LogArchive(std::shared_ptr<IFileUtils> fileUtils, std::string destination,
               std::chrono::system_clock::time_point now = std::chrono::system_clock::now());
    LogArchive(const LogArchive&) = delete;
    LogArchive& operator=(const LogArchive&) = delete;
    ~LogArchive();

    /// Copies the files into a work folder in the destination. One that cannot be read, or whose
    /// name is more than a name, is reported and left out; equal names are numbered. Throws
    /// std::runtime_error, and leaves no work folder, when nothing can be archived.
    void collect(const Files& files);

    /// Zips the work folder, removes it and prunes older archives. The result's text is the path,
    /// with a number when another archive of that second is there.
    ZipResult write();

    /// "logArchive_2025-02-19_04-08-25.zip", in UTC, in the destination.
    const std::string& path() const { return mArchive; }

private:
    std::size_t copyFiles(const Files& files) const;
    /// `number` counts the files that have had the name.
    bool copyFile(const std::string& path, const std::string& name, int& number) const;
    void removeWorkFolder() noexcept;
    void removeLeftovers() const;
    void prune() const;

    std::shared_ptr<IFileUtils> mFileUtils;
    std::string mDestination;
    std::string mArchive;
    std::unique_ptr<platform::OpenFolder> mWorkFolder;
};

} // namespace tarn
