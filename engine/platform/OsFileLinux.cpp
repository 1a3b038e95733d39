#include "engine/platform/OsFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelcore {

namespace {

FileState toState(const struct stat& from) {
    FileState state;
    state.volume = from.st_dev;
    state.number = from.st_ino;
    state.size = static_cast<std::uint64_t>(from.st_size);
    state.modified = from.st_mtim.tv_sec * 1'000'000'000 + from.st_mtim.tv_nsec;
    state.isFolder = S_ISDIR(from.st_mode);
    state.isOrdinary = S_ISREG(from.st_mode);
    return state;
}

int open(const std::string& path, int flags, std::intptr_t& handle) {
    do {
        handle = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
    } while (handle < 0 && errno == EINTR);
    return handle < 0 ? errno : 0;
}

/// Waits for somebody who looks whether the file is in use. Where a file system has no locks,
/// nobody gets the one that tidying needs either.
void markInUse(int file) {
    while (::flock(file, LOCK_SH) != 0 && errno == EINTR) {
    }
}

/// What is no hint's business, but the fate of bytes that were written.
int writeBack(std::intptr_t file, std::uint64_t position, std::uint64_t size, unsigned how) {
    while (::sync_file_range(static_cast<int>(file), static_cast<off_t>(position),
                             static_cast<off_t>(size), how) != 0) {
        if (errno == ENOSYS || errno == EINVAL || errno == ESPIPE || errno == EOPNOTSUPP) {
            return 0;
        }
        if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace

OsFile& OsFile::operator=(OsFile&& other) noexcept {
    if (this != &other) {
        close();
        mHandle = std::exchange(other.mHandle, kNone);
    }
    return *this;
}

int OsFile::openForReading(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    const int error = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY, handle);
    if (error == 0) {
        file = OsFile(handle);
        ::posix_fadvise(static_cast<int>(handle), 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    return error;
}

int OsFile::openPastCache(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    const int error = open(path, O_RDONLY | O_DIRECT | O_NONBLOCK | O_NOCTTY, handle);
    if (error == 0) {
        file = OsFile(handle);
    }
    return error;
}

int OsFile::openForState(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    const int error = open(path, O_PATH, handle);
    if (error == 0) {
        file = OsFile(handle);
    }
    return error;
}

int OsFile::openInUse(const std::string& path, OsFile& file) {
    const int error = openForReading(path, file);
    if (error == 0) {
        // Shared, so that writer and verifier can hold it together.
        markInUse(static_cast<int>(file.mHandle));
    }
    return error;
}

int OsFile::openToRemove(const std::string& path, OsFile& file) {
    Handle handle = kNone;
    const int error = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW, handle);
    if (error != 0) {
        return error;
    }
    file = OsFile(handle);
    return ::flock(static_cast<int>(handle), LOCK_EX | LOCK_NB) == 0 ? 0 : EBUSY;
}

int OsFile::remove(const std::string& path) {
    struct stat opened {};
    struct stat named {};
    if (::fstat(static_cast<int>(mHandle), &opened) != 0 || ::lstat(path.c_str(), &named) != 0) {
        return errno;
    }
    if (!S_ISREG(opened.st_mode) || !toState(opened).isSameFileAs(toState(named))) {
        return EBUSY;
    }
    return ::unlink(path.c_str()) == 0 ? 0 : errno;
}

int OsFile::createNew(const std::string& path, OsFile& file) {
    for (;;) {
        Handle handle = kNone;
        if (const int error = open(path, O_RDWR | O_CREAT | O_EXCL, handle); error != 0) {
            return error;
        }
        OsFile created(handle);
        markInUse(static_cast<int>(handle));
        struct stat found {};
        if (::fstat(static_cast<int>(handle), &found) == 0 && found.st_nlink > 0) {
            file = std::move(created);
            return 0;
        }
        // Somebody tidied the name away between its creation and the lock.
    }
}

int OsFile::close() {
    if (mHandle == kNone) {
        return 0;
    }
    // Linux releases the descriptor even when close reports EINTR: never call it twice.
    const int result = ::close(static_cast<int>(std::exchange(mHandle, kNone)));
    return result == 0 || errno == EINTR ? 0 : errno;
}

std::int64_t OsFile::readAt(std::uint64_t position, void* buffer, std::size_t size,
                            int& error) const {
    for (;;) {
        const ssize_t got =
            ::pread(static_cast<int>(mHandle), buffer, size, static_cast<off_t>(position));
        if (got >= 0) {
            return got;
        }
        if (errno != EINTR) {
            error = errno;
            return -1;
        }
    }
}

int OsFile::writeAt(std::uint64_t position, const void* data, std::size_t size) const {
    const auto* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t put =
            ::pwrite(static_cast<int>(mHandle), bytes, size, static_cast<off_t>(position));
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            return put < 0 ? errno : EIO;
        }
        bytes += put;
        size -= static_cast<std::size_t>(put);
        position += static_cast<std::uint64_t>(put);
    }
    return 0;
}

int OsFile::startWriteBack(std::uint64_t position, std::uint64_t size) const {
    return writeBack(mHandle, position, size, SYNC_FILE_RANGE_WRITE);
}

int OsFile::awaitWriteBack(std::uint64_t position, std::uint64_t size) const {
    return writeBack(mHandle, position, size, SYNC_FILE_RANGE_WAIT_BEFORE);
}

int OsFile::syncToDisk() const {
    while (::fsync(static_cast<int>(mHandle)) != 0) {
        if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

int OsFile::backdate() const {
    struct stat status {};
    if (::fstat(static_cast<int>(mHandle), &status) != 0) {
        return errno;
    }
    const std::array<timespec, 2> times{
        {{0, UTIME_OMIT}, {status.st_mtim.tv_sec - 1, status.st_mtim.tv_nsec}}};
    return ::futimens(static_cast<int>(mHandle), times.data()) == 0 ? 0 : errno;
}

int OsFile::state(FileState& state) const {
    struct stat found {};
    if (::fstat(static_cast<int>(mHandle), &found) != 0) {
        return errno;
    }
    state = toState(found);
    return 0;
}

int OsFile::narrowPermissions(const std::string& like) const {
    struct stat wide {};
    struct stat narrow {};
    if (::stat(like.c_str(), &narrow) != 0) {
        return 0;
    }
    if (::fstat(static_cast<int>(mHandle), &wide) != 0) {
        return errno;
    }
    mode_t allowed = narrow.st_mode & 0666U;
    if (wide.st_gid != narrow.st_gid) {
        // Another group is among those whom the file calls others.
        allowed = (allowed & 0606U) | ((allowed & 0006U) << 3U);
    }
    const mode_t mode = wide.st_mode & (allowed | 0600U) & 0777U;
    if (mode == (wide.st_mode & 0777U)) {
        return 0;
    }
    return ::fchmod(static_cast<int>(mHandle), mode) == 0 ? 0 : errno;
}

} // namespace zelcore
