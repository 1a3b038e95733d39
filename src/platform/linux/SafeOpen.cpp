#include "platform/linux/SafeOpen.h"

#include "platform/Wildcard.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

FolderEntry entryOf(int folder, const char* name, const struct stat& status) {
    struct stat target {};
    return {.name = name,
            .modified = inUnits(status.st_mtim),
            .isFolder = S_ISDIR(status.st_mode),
            .isLinkToFolder = S_ISLNK(status.st_mode) && fstatat(folder, name, &target, 0) == 0 &&
                              S_ISDIR(target.st_mode)};
}

} // namespace

std::int64_t inUnits(const timespec& time) {
    return std::int64_t{time.tv_sec} * 10'000'000 + time.tv_nsec / 100;
}

void closeQuietly(int file) {
    const int reason = errno;
    if (file >= 0) {
        close(file);
    }
    errno = reason;
}

int onlyOrdinary(int file) {
    struct stat status {};
    if (file >= 0 && fstat(file, &status) == 0 && !S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        closeQuietly(file);
        return -1;
    }
    return file;
}

bool lockWithoutWaiting(int file) {
    while (flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool isOwn(int file) {
    struct stat status {};
    return fstat(file, &status) == 0 && status.st_uid == geteuid();
}

std::optional<std::vector<FolderEntry>> entriesOf(int folder, std::string_view pattern) {
    const std::unique_ptr<DIR, CloseFolder> stream(folder >= 0 ? fdopendir(folder) : nullptr);
    if (stream == nullptr) {
        closeQuietly(folder);
        return std::nullopt;
    }
    std::vector<FolderEntry> entries;
    errno = 0;
    // readdir is safe as long as each stream stays on one thread.
    while (const dirent* entry = readdir(stream.get())) { // NOLINT(concurrency-mt-unsafe)
        const std::string_view name = entry->d_name;
        struct stat status {};
        if (name != "." && name != ".." && matchesWildcard(name, pattern) &&
            fstatat(folder, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
            entries.push_back(entryOf(folder, entry->d_name, status));
        }
        errno = 0;
    }
    return errno == 0 ? std::optional(std::move(entries)) : std::nullopt;
}

} // namespace tarn::platform
