#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The few file calls that differ between systems. Paths are UTF-8. Nothing here logs: a failure is
/// the result, with the system's `errno` in the calling thread's errno; lastFileError() tells the
/// number that the system itself gave.
namespace tarn::platform {

struct FileDetails {
    std::uint64_t size = 0;    ///< bytes
    std::int64_t accessed = 0; ///< 100 ns units since 1970-01-01 UTC
    std::int64_t modified = 0; ///< 100 ns units since 1970-01-01 UTC
    std::int64_t created = 0;  ///< 100 ns units since 1970-01-01 UTC; Linux: status change
    bool isFolder = false;
};

struct FolderEntry {
    std::string name;          ///< without its folder
    std::int64_t modified = 0; ///< 100 ns units since 1970-01-01 UTC
    bool isFolder = false;     ///< false for a link to one: nothing walks through it
    bool isLinkToFolder = false;
};

/// Of the calling thread's last failed file call: GetLastError() on Windows, errno on Linux.
std::uint32_t lastFileError();

std::optional<FileDetails> fileDetails(const std::string& path);

/// Entries of a folder whose names match a pattern of `*` and `?`, without "." and "..", unsorted.
/// Nothing when the folder cannot be read.
std::optional<std::vector<FolderEntry>> listFolder(const std::string& folder,
                                                   std::string_view pattern = "*");

/// Removes a file or a link, never a folder.
bool removeFile(const std::string& path);
bool removeEmptyFolder(const std::string& path);
bool makeFolder(const std::string& path);
/// Replaces an existing file on Linux, fails on Windows, as each C library's rename does.
bool renamePath(const std::string& from, const std::string& to);
/// Copies contents and modification time; replaces an existing target. Whole or not at all.
bool copyFileContents(const std::string& from, const std::string& to);
/// A second name for the same file; false where the file system cannot.
bool makeHardLink(const std::string& existing, const std::string& link);
/// True when both paths exist and name the same file (links and case followed).
bool isSameFile(const std::string& left, const std::string& right);
/// True when the caller may create files in the folder; tried, not guessed.
bool isFolderWritable(const std::string& folder);
/// The first place by which users other than the caller and the administrator may change the
/// libraries in a folder, by owner, group or permissions: the folder, one of those above it, or one
/// of the libraries. A group counts unless it is the administrator's or bears the caller's own
/// name. Windows: nothing; the side-loading policy decides there.
std::optional<std::string> placeThatOthersCanChange(const std::string& folder);

/// The path in the form that the system's calls take, for streams: std::ifstream(nativePath(p)).
/// Windows: wide text, `\\?\`-prefixed when long. Linux: the bytes as they are.
std::filesystem::path nativePath(const std::string& path);

} // namespace tarn::platform
