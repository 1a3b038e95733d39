#include "log/LogScope.h"
#include "platform/Files.h"
#include "platform/OpenFolder.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <algorithm>
#include <cerrno>
#include <functional>

namespace tarn {
namespace {

using platform::FolderEntry;

bool isFolder(const std::string& path) {
    const auto details = platform::fileDetails(fileNames::withoutTrailingSeparators(path));
    return details && details->isFolder;
}

/// Sorted by name, so that results do not depend on the file system.
std::vector<FolderEntry> entriesOf(const std::string& folder) {
    auto entries = platform::listFolder(folder).value_or(std::vector<FolderEntry>());
    std::ranges::sort(entries, {}, &FolderEntry::name);
    return entries;
}

/// Calls `visit(path, entry)` for everything below a folder, a folder before its contents.
void walk(const std::string& folder, const auto& visit) {
    for (const FolderEntry& entry : entriesOf(folder)) {
        const std::string path = fileNames::join(folder, entry.name);
        visit(path, entry);
        if (entry.isFolder) {
            walk(path, visit);
        }
    }
}

bool isFile(const FolderEntry& entry) {
    return !entry.isFolder && !entry.isLinkToFolder;
}

bool removeWithContents(const std::string& path) {
    const auto folder = platform::OpenFolder::open(path);
    return folder != nullptr && folder->removeAll();
}

bool copyWithContents(const std::string& from, const std::string& to) {
    const auto entries = platform::listFolder(from);
    if (!entries || !(isFolder(to) || platform::makeFolder(to))) {
        return false;
    }
    bool copied = true;
    for (const FolderEntry& entry : *entries) {
        const std::string source = fileNames::join(from, entry.name);
        const std::string target = fileNames::join(to, entry.name);
        copied = (entry.isFolder ? copyWithContents(source, target)
                                 : platform::copyFileContents(source, target)) &&
                 copied;
    }
    return copied;
}

bool isInside(const std::string& path, const std::string& folder) {
    for (std::string current = path; !current.empty(); current = fileNames::parentOf(current)) {
        if (platform::isSameFile(current, folder)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool FileUtils::mkdirIfNotExistsRecursive(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("mkdirIfNotExistsRecursive");
    std::vector<std::string> missing;
    std::string current = fileNames::withoutTrailingSeparators(folder);
    while (!current.empty() && !isFolder(current)) {
        missing.push_back(current);
        current = fileNames::parentOf(current);
    }
    while (!missing.empty()) {
        // Another process may make the same folder at the same time.
        if (!platform::makeFolder(missing.back()) && !isFolder(missing.back())) {
            return false;
        }
        missing.pop_back();
    }
    return isFolder(folder);
}

bool FileUtils::dirExists(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("dirExists");
    return isFolder(folder);
}

bool FileUtils::mkdir(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("mkdir");
    return platform::makeFolder(fileNames::withoutTrailingSeparators(folder));
}

bool FileUtils::mkdirIfNotExists(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("mkdirIfNotExists");
    return dirExists(folder) || mkdir(folder);
}

bool FileUtils::removeEmptyDir(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("removeEmptyDir");
    return platform::removeEmptyFolder(fileNames::withoutTrailingSeparators(folder));
}

bool FileUtils::removeNonEmptyDir(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("removeNonEmptyDir");
    const std::string path = fileNames::withoutTrailingSeparators(folder);
    // Whether or not a link to a folder can be removed, what is behind it stays: it cannot be
    // opened as a folder.
    return isFolder(path) && (removeWithContents(path) || platform::removeFile(path));
}

bool FileUtils::moveDirectory(const std::string& from, const std::string& to) const {
    TARN_FILE_UTILS_SCOPE("moveDirectory");
    const std::string source = fileNames::withoutTrailingSeparators(from);
    const std::string target = fileNames::withoutTrailingSeparators(to);
    if (!isFolder(source) || platform::fileDetails(target) || isInside(target, source)) {
        return false;
    }
    if (platform::renamePath(source, target)) {
        return true;
    }
    if (errno != EXDEV) {
        return false;
    }
    if (!copyWithContents(source, target)) {
        removeWithContents(target);
        return false;
    }
    return removeWithContents(source);
}

std::vector<std::string> FileUtils::getDirs(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("getDirs");
    std::vector<std::string> folders;
    for (const FolderEntry& entry : entriesOf(folder)) {
        if (entry.isFolder) {
            folders.push_back(fileNames::join(folder, entry.name));
        }
    }
    return folders;
}

std::vector<std::string> FileUtils::getDirsRecursive(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("getDirsRecursive");
    std::vector<std::string> folders;
    walk(folder, [&](const std::string& path, const FolderEntry& entry) {
        if (entry.isFolder) {
            folders.push_back(path);
        }
    });
    return folders;
}

std::vector<std::string> FileUtils::getFiles(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("getFiles");
    std::vector<std::string> names;
    for (const FolderEntry& entry : entriesOf(folder)) {
        if (isFile(entry)) {
            names.push_back(entry.name);
        }
    }
    return names;
}

std::vector<std::string> FileUtils::getFilesRecursive(const std::string& folder) const {
    TARN_FILE_UTILS_SCOPE("getFilesRecursive");
    std::vector<std::string> paths;
    walk(folder, [&](const std::string& path, const FolderEntry& entry) {
        if (isFile(entry)) {
            paths.push_back(path);
        }
    });
    return paths;
}

std::vector<std::string> FileUtils::getFilesSortedByDate(const std::string& folder,
                                                         bool oldestFirst) const {
    TARN_FILE_UTILS_SCOPE("getFilesSortedByDate");
    auto entries = entriesOf(folder);
    std::erase_if(entries, [](const FolderEntry& entry) { return !isFile(entry); });
    // The oldest first is the newest first turned round, equal times too: a comparison that orders
    // those both ways would make the sort's behaviour undefined.
    std::ranges::stable_sort(entries, std::ranges::greater(), &FolderEntry::modified);
    if (oldestFirst) {
        std::ranges::reverse(entries);
    }
    std::vector<std::string> paths;
    for (const FolderEntry& entry : entries) {
        paths.push_back(fileNames::join(folder, entry.name));
    }
    return paths;
}

bool FileUtils::deleteAllFiles(const std::string& folder, const std::string& pattern) const {
    TARN_FILE_UTILS_SCOPE("deleteAllFiles");
    const auto entries = platform::listFolder(folder, pattern);
    bool deleted = entries.has_value();
    for (const FolderEntry& entry : entries.value_or(std::vector<FolderEntry>())) {
        if (isFile(entry)) {
            deleted = platform::removeFile(fileNames::join(folder, entry.name)) && deleted;
        }
    }
    return deleted;
}

bool FileUtils::copyDirectory(const std::string& from, const std::string& to) const {
    TARN_FILE_UTILS_SCOPE("copyDirectory");
    return isFolder(from) && !isInside(fileNames::withoutTrailingSeparators(to), from) &&
           mkdirIfNotExistsRecursive(to) && copyWithContents(from, to);
}

} // namespace tarn
