#include "logging/archive/LogArchive.h"

#include "log/LogCall.h"
#include "platform/Files.h"
#include "platform/PrivateFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <stdexcept>
#include <utility>

namespace tarn {
namespace {

constexpr const char* kFamily = "logArchive";
constexpr const char* kLeftovers = "logArchive*";
constexpr const char* kWorkFolder = "logArchive-";

/// An archive that is being written, or that was when its program ended.
bool isUnfinished(const std::string& name) {
    return name.starts_with(kFamily) && name.ends_with(platform::PrivateFile::kEnding);
}

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
      mArchive(mFileUtils->joinPath(mDestination, archiveName(now))) {
}

LogArchive::~LogArchive() {
    removeWorkFolder();
}

void LogArchive::collect(const Files& files) {
    TARN_LOG(RootLoggerLevel::Debug, "Starting log archiving.");
    if (mDestination.empty()) {
        // Joined with a name it would mean the working folder.
        throw std::runtime_error("no destination folder is given");
    }
    removeLeftovers();
    mWorkFolder = platform::OpenFolder::makePrivate(mDestination, kWorkFolder);
    if (mWorkFolder == nullptr) {
        throw std::runtime_error("cannot make a folder in " + mDestination);
    }
    if (copyFiles(files) == 0) {
        removeWorkFolder();
        throw std::runtime_error("none of the files can be archived");
    }
}

std::size_t LogArchive::copyFiles(const Files& files) const {
    std::size_t copied = 0;
    std::map<std::string, int> numbers;
    for (const auto& [name, path] : files) {
        if (!isPlainName(name)) {
            TARN_LOG(RootLoggerLevel::Error, "Refused to archive under the name: " << name);
        } else if (!copyFile(path, name, numbers[name])) {
            const std::uint32_t error = platform::lastFileError();
            TARN_LOG(RootLoggerLevel::Error,
                     "Failed to copy: " << path << ", errorCode: " << error);
        } else {
            ++copied;
        }
    }
    return copied;
}

bool LogArchive::copyFile(const std::string& path, const std::string& name, int& number) const {
    const auto [stem, extension] = mFileUtils->splitExtension(mFileUtils->sanitizeFileName(name));
    while (true) {
        const std::string mark = number == 0 ? "" : "(" + std::to_string(number) + ")";
        ++number;
        if (mWorkFolder->copyIn(path, stem + mark + extension)) {
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
}

void LogArchive::removeWorkFolder() noexcept {
    if (const auto folder = std::exchange(mWorkFolder, nullptr); folder != nullptr) {
        folder->removeAll();
    }
}

/// Of runs that were interrupted. What somebody else made, or uses, stays.
void LogArchive::removeLeftovers() const {
    for (const auto& entry : platform::listFolder(mDestination, kLeftovers)
                                 .value_or(std::vector<platform::FolderEntry>())) {
        const std::string path = mFileUtils->joinPath(mDestination, entry.name);
        if (entry.isFolder && entry.name.starts_with(kWorkFolder)) {
            if (const auto leftover = platform::OpenFolder::openLeftover(path)) {
                leftover->removeAll();
            }
        } else if (isUnfinished(entry.name)) {
            platform::removeLeftoverFile(path);
        }
    }
}

ZipResult LogArchive::write() {
    TARN_LOG(RootLoggerLevel::Debug,
             "Attempting to generate zip file: " << mArchive << " ignoreRoot: true");
    ZipResult result = zipFolder(mWorkFolder->path(), mArchive, true, ExistingArchive::Kept);
    removeWorkFolder();
    prune();
    TARN_LOG(RootLoggerLevel::Debug, "Log archiving finished.");
    return result;
}

void LogArchive::prune() const {
    auto names = mFileUtils->getFiles(mDestination);
    std::erase_if(names, [](const std::string& name) {
        return !name.starts_with(kFamily) || isUnfinished(name);
    });
    std::ranges::sort(names);
    for (std::size_t index = 0; index + kKeptArchives < names.size(); ++index) {
        mFileUtils->remove(mFileUtils->joinPath(mDestination, names[index]));
    }
}

} // namespace tarn
