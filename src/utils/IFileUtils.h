#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

/// Size in bytes and times in 100 ns units since 1970-01-01 UTC.
struct FileInfo {
    std::uint64_t size = 0;
    std::int64_t accessed = 0;
    std::int64_t modified = 0;
    std::int64_t created = 0;
};

/// File and folder operations, replaceable as a whole for tests and platforms. Paths are UTF-8.
/// Stateless: any thread. Nothing throws but for want of memory; a failure is the result (false,
/// empty text, empty list, no value).
class IFileUtils {
public:
    virtual ~IFileUtils() = default;

    /// Whether the file can be opened for reading.
    virtual bool accessible(const std::string& path) const = 0;
    virtual bool exists(const std::string& path) const = 0;
    /// The same test; tells a failed look-up from an absent path by `error`, an errno value.
    virtual bool exists(const std::string& path, int& error) const = 0;
    /// Deletes a file, never a folder.
    virtual bool remove(const std::string& path) const = 0;
    virtual bool remove(const std::string& path, int& error) const = 0;
    virtual bool mkdirIfNotExistsRecursive(const std::string& folder) const = 0;
    virtual bool dirExists(const std::string& folder) const = 0;
    virtual bool mkdir(const std::string& folder) const = 0;
    virtual bool mkdirIfNotExists(const std::string& folder) const = 0;
    virtual bool rename(const std::string& from, const std::string& to) const = 0;
    /// The same, logging a failure; `reason` receives the system's text of it.
    virtual bool renameWithMessage(const std::string& from, const std::string& to,
                                   std::string* reason = nullptr) const = 0;
    virtual bool removeEmptyDir(const std::string& folder) const = 0;
    /// Removes a folder and what is in it; links are removed, not followed.
    virtual bool removeNonEmptyDir(const std::string& folder) const = 0;
    virtual void reserved14() const = 0;
    virtual bool moveDirectory(const std::string& from, const std::string& to) const = 0;
    /// Full paths of the sub-folders; of the files: bare names in getFiles, full paths elsewhere.
    /// A link to a folder is neither.
    virtual std::vector<std::string> getDirs(const std::string& folder) const = 0;
    virtual std::vector<std::string> getDirsRecursive(const std::string& folder) const = 0;
    virtual std::vector<std::string> getFiles(const std::string& folder) const = 0;
    virtual std::vector<std::string> getFilesRecursive(const std::string& folder) const = 0;
    /// Full paths by last write time; equal ones by name, turned round with `oldestFirst`.
    virtual std::vector<std::string> getFilesSortedByDate(const std::string& folder,
                                                          bool oldestFirst) const = 0;
    virtual std::wstring toWidePath(const std::string& path) const = 0;
    virtual std::string fromWidePath(const std::wstring& path) const = 0;
    /// Deletes the files of a folder whose names match a pattern of `*` and `?`; true when all
    /// that matched are gone.
    virtual bool deleteAllFiles(const std::string& folder, const std::string& pattern) const = 0;
    /// "\\" (one backslash) on Windows, "/" on Linux.
    virtual std::string pathSeparator() const = 0;
    /// Joins with exactly one separator between.
    virtual std::string joinPath(const std::string& folder, const std::string& name) const = 0;
    /// Up to and including the last '\' or '/'; empty when there is neither.
    virtual std::string directoryOfPath(const std::string& path) const = 0;
    /// What follows the last '\' or '/'; the whole text when there is neither.
    virtual std::string fileNameOfPath(const std::string& path) const = 0;
    /// The last '.' of the file name and what follows; empty when there is none or it comes first.
    virtual std::string extensionOfPath(const std::string& path) const = 0;
    /// Bytes; -1 when the file cannot be opened.
    virtual std::int64_t getFileSize(const std::string& path) const = 0;
    virtual std::optional<FileInfo> getFileDetails(const std::string& path) const = 0;
    /// As below, after removing every "_{identifier}" from the name.
    virtual std::string getUniqueDownloadPath(const std::string& folder,
                                              const std::string& fileName,
                                              bool stripIdentifiers) const = 0;
    /// A free path for a sanitised name in `folder` (which ends with its separator): "name.ext",
    /// "name(1).ext" to "name(98).ext", then the unnumbered one although it exists.
    virtual std::string getUniqueDownloadPath(const std::string& folder,
                                              const std::string& fileName) const = 0;
    /// The name with each of \/:*?"<>| replaced by '_'.
    virtual std::string sanitizeFileName(const std::string& fileName) const = 0;
    /// Stem and extension (dot included); a name that begins with its only dot is all stem.
    virtual std::pair<std::string, std::string> splitExtension(
        const std::string& fileName) const = 0;
    /// Replaces an existing target.
    virtual bool copyFile(const std::string& from, const std::string& to) const = 0;
    /// True also when nothing had to be done because the contents are equal.
    virtual bool copyFileIfDifferent(const std::string& from, const std::string& to) const = 0;
    virtual bool copyDirectory(const std::string& from, const std::string& to) const = 0;
    // Lines end in "\n"; a "\r" before it is dropped on reading.
    virtual std::string readFirstLine(const std::string& path) const = 0;
    virtual bool writeOneLine(const std::string& path, const std::string& line) const = 0;
    /// Lines count from 0; empty past the end.
    virtual std::string readSpecifiedLine(const std::string& path, std::size_t number) const = 0;
    /// The last line of a file of two or more; empty for a file of one.
    virtual std::string readLastLine(const std::string& path) const = 0;
    virtual std::vector<std::string> readAllLines(const std::string& path) const = 0;
    virtual bool writeAllLines(const std::string& path,
                               const std::vector<std::string>& lines) const = 0;
    virtual bool canReadFirstBytes(const std::string& path, std::size_t count) const = 0;
    virtual std::optional<std::vector<std::uint8_t>> readAllBytes(
        const std::string& path) const = 0;
    virtual bool writeAllBytes(const std::string& path,
                               const std::vector<std::uint8_t>& bytes) const = 0;
    /// A second name for a file; false where the file system has no links.
    virtual bool hardLink(const std::string& existing, const std::string& link) const = 0;
    /// Whether both exist and are the same file.
    virtual bool isSameFile(const std::string& left, const std::string& right) const = 0;
};

} // namespace tarn
