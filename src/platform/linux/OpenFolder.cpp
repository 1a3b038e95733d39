#include "platform/OpenFolder.h"

#include "platform/linux/SafeOpen.h"
#include "platform/linux/SystemPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn::platform {
namespace {

constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr int kOnlyToLookAt = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr int kNamesTried = 100;

int numberOf(std::intptr_t handle) {
    return static_cast<int>(handle);
}

/// One that another process has just taken for a leftover and removed is of no use.
bool isMarked(int folder) {
    struct stat status {};
    return lockWithoutWaiting(folder) && fstat(folder, &status) == 0 && status.st_nlink > 0;
}

bool canOthersReplaceEntries(const struct stat& folder) {
    if (folder.st_uid != 0 && folder.st_uid != geteuid()) {
        return true;
    }
    // In a sticky folder everybody may make files, but touch only their own.
    return (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0 && (folder.st_mode & S_ISVTX) == 0;
}

bool removeBelow(int folder) {
    const auto entries =
        entriesOf(openat(folder, ".", kFolder), "*").value_or(std::vector<FolderEntry>());
    bool removed = true;
    for (const FolderEntry& entry : entries) {
        const char* const name = entry.name.c_str();
        if (entry.isFolder) {
            const int below = openat(folder, name, kFolder);
            removed = below >= 0 && removeBelow(below) && removed;
            closeQuietly(below);
        }
        removed = unlinkat(folder, name, entry.isFolder ? AT_REMOVEDIR : 0) == 0 && removed;
    }
    return removed;
}

} // namespace

std::unique_ptr<OpenFolder> OpenFolder::open(const std::string& path) {
    const int folder = ::open(systemPath(path), kFolder);
    return folder < 0 ? nullptr : std::unique_ptr<OpenFolder>(new OpenFolder(path, folder));
}

std::unique_ptr<OpenFolder> OpenFolder::makePrivate(const std::string& parent,
                                                    const std::string& prefix) {
    const int above = ::open(systemPath(parent), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    int made = -1;
    std::string name;
    for (int tries = 0; above >= 0 && made < 0 && tries < kNamesTried; ++tries) {
        name = unforeseeableName(prefix);
        if (mkdirat(above, name.c_str(), S_IRWXU) != 0) {
            if (errno != EEXIST) {
                break;
            }
            continue;
        }
        made = openat(above, name.c_str(), kFolder);
        if (made >= 0 && !(isOwn(made) && isMarked(made))) {
            closeQuietly(std::exchange(made, -1));
        }
    }
    closeQuietly(above);
    return made < 0 ? nullptr
                    : std::unique_ptr<OpenFolder>(new OpenFolder(parent + '/' + name, made));
}

std::unique_ptr<OpenFolder> OpenFolder::openLeftover(const std::string& path) {
    auto folder = open(path);
    struct stat status {};
    const bool isLeftover = folder != nullptr && isOwn(numberOf(folder->mHandle)) &&
                            fstat(numberOf(folder->mHandle), &status) == 0 &&
                            (status.st_mode & 0777U) == S_IRWXU &&
                            lockWithoutWaiting(numberOf(folder->mHandle));
    return isLeftover ? std::move(folder) : nullptr;
}

OpenFolder::~OpenFolder() {
    close();
}

void OpenFolder::close() {
    closeQuietly(numberOf(std::exchange(mHandle, -1)));
}

std::optional<std::vector<FolderEntry>> OpenFolder::entries() const {
    return entriesOf(openat(numberOf(mHandle), ".", kFolder), "*");
}

std::unique_ptr<OpenFolder> OpenFolder::folder(const std::string& name) const {
    const int below = openat(numberOf(mHandle), systemPath(name), kFolder);
    return below < 0 ? nullptr
                     : std::unique_ptr<OpenFolder>(new OpenFolder(mPath + '/' + name, below));
}

std::intptr_t OpenFolder::openFile(const std::string& name) const {
    return onlyOrdinary(openat(numberOf(mHandle), systemPath(name),
                               O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

bool OpenFolder::copyIn(const std::string& from, const std::string& name) const {
    return copyContentsInto(from, numberOf(mHandle), systemPath(name));
}

bool OpenFolder::makeFolder(const std::string& name) const {
    return mkdirat(numberOf(mHandle), systemPath(name), S_IRWXU) == 0;
}

bool OpenFolder::makeHardLink(const std::string& target, const std::string& name) const {
    return linkat(AT_FDCWD, systemPath(target), numberOf(mHandle), systemPath(name),
                  AT_SYMLINK_FOLLOW) == 0;
}

bool OpenFolder::makeSymbolicLink(const std::string& target, const std::string& name) const {
    return symlinkat(systemPath(target), numberOf(mHandle), systemPath(name)) == 0;
}

bool OpenFolder::removeContents() const {
    return removeBelow(numberOf(mHandle));
}

bool OpenFolder::removeAll() {
    const bool isEmpty = removeContents();
    return rmdir(systemPath(mPath)) == 0 && isEmpty;
}

bool canOthersReplaceIn(const std::string& folder) {
    struct stat below {};
    for (int handle = ::open(systemPath(folder), kOnlyToLookAt); handle >= 0;) {
        struct stat status {};
        const bool isKnown = fstat(handle, &status) == 0;
        const bool isRoot = status.st_dev == below.st_dev && status.st_ino == below.st_ino;
        const int above = isKnown && !isRoot && !canOthersReplaceEntries(status)
                              ? openat(handle, "..", kOnlyToLookAt)
                              : -1;
        closeQuietly(handle);
        if (isRoot) {
            return false;
        }
        below = status;
        handle = above;
    }
    return true;
}

} // namespace tarn::platform
