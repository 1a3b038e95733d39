#include "utils/FileUtils.h"

#include "log/LogScope.h"
#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "utils/FileNames.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace tarn {
namespace {

constexpr int kFirstRefusedNumber = 99;

/// Opened at its end; nothing for a folder, which Linux would open too.
std::optional<std::ifstream> openForReading(const std::string& path) {
    const auto details = platform::fileDetails(path);
    if (!details || details->isFolder) {
        return std::nullopt;
    }
    std::ifstream stream(platform::nativePath(path), std::ios::binary | std::ios::ate);
    return stream ? std::optional(std::move(stream)) : std::nullopt;
}

bool succeeded(bool result, int& error) {
    error = result ? 0 : errno;
    return result;
}

} // namespace

bool FileUtils::accessible(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("accessible");
    return openForReading(path).has_value();
}

bool FileUtils::exists(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("exists");
    return platform::fileDetails(path).has_value();
}

bool FileUtils::exists(const std::string& path, int& error) const {
    TARN_FILE_UTILS_SCOPE("exists");
    return succeeded(platform::fileDetails(path).has_value(), error);
}

bool FileUtils::remove(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("remove");
    return platform::removeFile(path);
}

bool FileUtils::remove(const std::string& path, int& error) const {
    TARN_FILE_UTILS_SCOPE("remove");
    return succeeded(platform::removeFile(path), error);
}

bool FileUtils::rename(const std::string& from, const std::string& to) const {
    TARN_FILE_UTILS_SCOPE("rename");
    return platform::renamePath(from, to);
}

bool FileUtils::renameWithMessage(const std::string& from, const std::string& to,
                                  std::string* reason) const {
    TARN_FILE_UTILS_SCOPE("renameWithMessage");
    if (platform::renamePath(from, to)) {
        return true;
    }
    const int error = errno;
    if (reason != nullptr) {
        *reason = std::generic_category().message(error);
    }
    TARN_FILE_UTILS_LOG(RootLoggerLevel::Error, "Could not rename '" << from << "' to '" << to
                                                                     << "'.  errno was " << error);
    return false;
}

std::wstring FileUtils::toWidePath(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("toWidePath");
    return platform::toWide(path);
}

std::string FileUtils::fromWidePath(const std::wstring& path) const {
    TARN_FILE_UTILS_SCOPE("fromWidePath");
    return platform::toUtf8(path);
}

std::string FileUtils::pathSeparator() const {
    TARN_FILE_UTILS_SCOPE("pathSeparator");
    return {platform::pathSeparator()};
}

std::string FileUtils::joinPath(const std::string& folder, const std::string& name) const {
    TARN_FILE_UTILS_SCOPE("joinPath");
    return fileNames::join(folder, name);
}

std::string FileUtils::directoryOfPath(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("directoryOfPath");
    return fileNames::directoryOf(path);
}

std::string FileUtils::fileNameOfPath(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("fileNameOfPath");
    return fileNames::nameOf(path);
}

std::string FileUtils::extensionOfPath(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("extensionOfPath");
    return fileNames::splitExtension(fileNames::nameOf(path)).second;
}

std::int64_t FileUtils::getFileSize(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("getFileSize");
    auto stream = openForReading(path);
    return stream ? static_cast<std::int64_t>(stream->tellg()) : -1;
}

std::optional<FileInfo> FileUtils::getFileDetails(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("getFileDetails");
    const auto details = platform::fileDetails(path);
    if (!details) {
        return std::nullopt;
    }
    return FileInfo{.size = details->size,
                    .accessed = details->accessed,
                    .modified = details->modified,
                    .created = details->created};
}

std::string FileUtils::getUniqueDownloadPath(const std::string& folder, const std::string& fileName,
                                             bool stripIdentifiers) const {
    TARN_FILE_UTILS_SCOPE("getUniqueDownloadPath");
    return getUniqueDownloadPath(
        folder, stripIdentifiers ? fileNames::withoutIdentifiers(fileName) : fileName);
}

std::string FileUtils::getUniqueDownloadPath(const std::string& folder,
                                             const std::string& fileName) const {
    TARN_FILE_UTILS_SCOPE("getUniqueDownloadPath");
    const auto [stem, extension] = fileNames::splitExtension(fileNames::sanitize(fileName));
    std::string unnumbered = folder + stem + extension;
    std::string candidate = unnumbered;
    int error = 0;
    for (int number = 1; exists(candidate, error); ++number) {
        if (number == kFirstRefusedNumber) {
            return unnumbered;
        }
        candidate = folder + stem + "(" + std::to_string(number) + ")" + extension;
    }
    return candidate;
}

std::string FileUtils::sanitizeFileName(const std::string& fileName) const {
    TARN_FILE_UTILS_SCOPE("sanitizeFileName");
    return fileNames::sanitize(fileName);
}

std::pair<std::string, std::string> FileUtils::splitExtension(const std::string& fileName) const {
    TARN_FILE_UTILS_SCOPE("splitExtension");
    return fileNames::splitExtension(fileName);
}

bool FileUtils::copyFile(const std::string& from, const std::string& to) const {
    TARN_FILE_UTILS_SCOPE("copyFile");
    return platform::copyFileContents(from, to);
}

bool FileUtils::hardLink(const std::string& existing, const std::string& link) const {
    TARN_FILE_UTILS_SCOPE("hardLink");
    return platform::makeHardLink(existing, link);
}

bool FileUtils::isSameFile(const std::string& left, const std::string& right) const {
    TARN_FILE_UTILS_SCOPE("isSameFile");
    return platform::isSameFile(left, right);
}

} // namespace tarn
