#include "platform/FileIdentity.h"

#include "platform/linux/SystemPath.h"

#include <sys/stat.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

FileKind kindOf(mode_t mode) {
    if (S_ISREG(mode)) {
        return FileKind::Ordinary;
    }
    return S_ISDIR(mode) ? FileKind::Folder : FileKind::Other;
}

FileIdentity identityFrom(const struct stat& status) {
    return {
        .volume = status.st_dev,
        .number = status.st_ino,
        .size = static_cast<std::uint64_t>(status.st_size),
        .modified = std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec,
        .kind = kindOf(status.st_mode)};
}

} // namespace

std::optional<FileIdentity> identifyFile(const std::string& path) {
    struct stat status {};
    return stat(systemPath(path), &status) == 0 ? std::optional(identityFrom(status))
                                                : std::nullopt;
}

bool isLink(const std::string& path) {
    struct stat status {};
    return lstat(systemPath(path), &status) == 0 && S_ISLNK(status.st_mode);
}

bool isWriteProtected(const std::string& path) {
    struct stat status {};
    // The administrator may write whatever its permissions say.
    return access(systemPath(path), W_OK) != 0 ||
           (stat(systemPath(path), &status) == 0 &&
            (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0);
}

Removal removeUnchangedFile(const std::string& path, const FileIdentity& expected) {
    struct stat status {};
    if (lstat(systemPath(path), &status) != 0) {
        return Removal::Failed;
    }
    if (identityFrom(status) != expected) {
        return Removal::Changed;
    }
    return unlink(systemPath(path)) == 0 ? Removal::Done : Removal::Failed;
}

} // namespace tarn::platform
