#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// What tells one file from another and one state of a file from the next. Paths are UTF-8; a
/// failure leaves the system's `errno` in the calling thread's errno.
namespace tarn::platform {

enum class FileKind { Ordinary, Folder, Other };

/// Equal values: the same file, unchanged.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t number = 0;  ///< of the file within its volume
    std::uint64_t size = 0;    ///< bytes
    std::int64_t modified = 0; ///< finest unit of the system
    FileKind kind = FileKind::Other;

    bool operator==(const FileIdentity&) const = default;
    bool isSameFileAs(const FileIdentity& other) const {
        return volume == other.volume && number == other.number;
    }
};

/// Follows links and opens nothing that would answer, so that a pipe or a device may be asked
/// about. Nothing when there is no such file.
std::optional<FileIdentity> identifyFile(const std::string& path);

/// True for a symbolic link, also one that leads nowhere; on Windows for a junction, too.
bool isLink(const std::string& path);

/// True when the caller may not write an existing file, or nobody is meant to.
bool isWriteProtected(const std::string& path);

enum class Removal { Done, Changed, Failed };

/// Removes a file if it still is that file in that state and no link to it.
Removal removeUnchangedFile(const std::string& path, const FileIdentity& expected);

} // namespace tarn::platform
