#include "logging/LogArchive.h"

#include "logging/LogCall.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <stdexcept>

namespace tarn {
namespace {

constexpr const char* kFamily = "logArchive";

/// In UTC, so that the order of the names is the order of time when the clocks change, too.
std::string archiveName(std::chrono::system_clock::time_point now) {
    using namespace std::chrono;
    const auto second = floor<seconds>(now);
    const auto day = floor<days>(second);
    const year_month_day date(day);
    const hh_mm_ss time(second - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "_%04d-%02u-%02u_%02d-%02d-%02d.zip",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return std::string(kFamily) + text.data();
}

/// A name that cannot lead out of the folder that it is put in, on any system.
bool isPlainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\\:\0", 4)) == std::string::npos;
}

std::string withoutSeparator(std::string folder, const IFileUtils& fileUtils) {
    const std::string separator = fileUtils.pathSeparator();
    if (folder.size() > separator.size() && folder.ends_with(separator)) {
        folder.resize(folder.size() - separator.size());
    }
    return folder;
}

} // namespace

LogArchive::LogArchive(std::shared_ptr<IFileUtils> fileUtils, std::string destination,
                       std::chrono::system_clock::time_point now)
    : mFileUtils(std::move(fileUtils)),
      mDestination(withoutSeparator(std::move(destination), *mFileUtils)),
      mWorkFolder(mFileUtils->joinPath(mDestination, kFamily)),
      mArchive(mFileUtils->joinPath(mDestination, archiveName(now))) {
}

void LogArchive::collect(const Files& files) const {
    TARN_LOG(RootLoggerLevel::Debug, "Starting log archiving.");
    if (mDestination.empty()) {
        // Joined with a name it would mean the working folder.
        throw std::runtime_error("no destination folder is given");
    }
    clearWorkFolder();
    if (!mFileUtils->mkdirIfNotExists(mWorkFolder)) {
        throw std::runtime_error("cannot make the folder " + mWorkFolder);
    }
    if (copyFiles(files) == 0) {
        clearWorkFolder();
        throw std::runtime_error("none of the files can be archived");
    }
}

std::size_t LogArchive::copyFiles(const Files& files) const {
    const std::string prefix = mFileUtils->joinPath(mWorkFolder, "");
    std::size_t copied = 0;
    for (const auto& [name, path] : files) {
        if (!isPlainName(name)) {
            TARN_LOG(RootLoggerLevel::Error, "Refused to archive under the name: " << name);
        } else if (!mFileUtils->copyFile(path, mFileUtils->getUniqueDownloadPath(prefix, name))) {
            TARN_LOG(RootLoggerLevel::Error, "Failed to copy: " << path);
        } else {
            ++copied;
        }
    }
    return copied;
}

void LogArchive::clearWorkFolder() const {
    // A file may stand in the folder's place.
    mFileUtils->remove(mWorkFolder);
    mFileUtils->removeNonEmptyDir(mWorkFolder);
}

ZipResult LogArchive::write() const {
    TARN_LOG(RootLoggerLevel::Debug,
             "Attempting to generate zip file: " << mArchive << " ignoreRoot: true");
    ZipResult result = zipFolder(mWorkFolder, mArchive, true);
    clearWorkFolder();
    prune();
    TARN_LOG(RootLoggerLevel::Debug, "Log archiving finished.");
    return result;
}

void LogArchive::prune() const {
    auto names = mFileUtils->getFiles(mDestination);
    std::erase_if(names, [](const std::string& name) { return !name.starts_with(kFamily); });
    std::ranges::sort(names);
    for (std::size_t index = 0; index + kKeptArchives < names.size(); ++index) {
        mFileUtils->remove(mFileUtils->joinPath(mDestination, names[index]));
    }
}

} // namespace tarn
