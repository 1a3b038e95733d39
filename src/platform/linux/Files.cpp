#include "platform/Files.h"

#include "platform/linux/SafeOpen.h"
#include "platform/linux/SystemPath.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::platform {
const char* systemPath(const std::string& path) {
    // A NUL inside would silently name another file; the empty path names none (ENOENT).
    return path.find('\0') == std::string::npos ? path.c_str() : "";
}

std::uint32_t lastFileError() {
    return static_cast<std::uint32_t>(errno);
}

std::optional<FileDetails> fileDetails(const std::string& path) {
    struct stat status {};
    if (stat(systemPath(path), &status) != 0) {
        return std::nullopt;
    }
    return FileDetails{.size = static_cast<std::uint64_t>(status.st_size),
                       .accessed = inUnits(status.st_atim),
                       .modified = inUnits(status.st_mtim),
                       .created = inUnits(status.st_ctim),
                       .isFolder = S_ISDIR(status.st_mode)};
}

std::optional<std::vector<FolderEntry>> listFolder(const std::string& folder,
                                                   std::string_view pattern) {
    return entriesOf(open(systemPath(folder), O_RDONLY | O_DIRECTORY | O_CLOEXEC), pattern);
}

bool removeFile(const std::string& path) {
    return unlink(systemPath(path)) == 0;
}

bool removeEmptyFolder(const std::string& path) {
    return rmdir(systemPath(path)) == 0;
}

bool makeFolder(const std::string& path) {
    return mkdir(systemPath(path), S_IRWXU | S_IRWXG | S_IRWXO) == 0;
}

bool renamePath(const std::string& from, const std::string& to) {
    return std::rename(systemPath(from), systemPath(to)) == 0;
}

bool makeHardLink(const std::string& existing, const std::string& link) {
    return linkat(AT_FDCWD, systemPath(existing), AT_FDCWD, systemPath(link), AT_SYMLINK_FOLLOW) ==
           0;
}

bool isSameFile(const std::string& left, const std::string& right) {
    struct stat leftStatus {};
    struct stat rightStatus {};
    return stat(systemPath(left), &leftStatus) == 0 && stat(systemPath(right), &rightStatus) == 0 &&
           leftStatus.st_dev == rightStatus.st_dev && leftStatus.st_ino == rightStatus.st_ino;
}

bool isFolderWritable(const std::string& folder) {
    std::string probe = systemPath(folder);
    if (probe.empty()) {
        errno = ENOENT;
        return false;
    }
    // Without a name nothing can be left over; not every file system has that.
    if (const int nameless = open(probe.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
        nameless >= 0) {
        close(nameless);
        return true;
    }
    probe += "/.rc-XXXXXX";
    const int file = mkostemp(probe.data(), O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    close(file);
    return unlink(probe.c_str()) == 0;
}

std::filesystem::path nativePath(const std::string& path) {
    return systemPath(path);
}

} // namespace tarn::platform
