#include "platform/Files.h"
#include "platform/linux/SafeOpen.h"
#include "platform/linux/SystemPath.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn::platform {
namespace {

class Descriptor {
public:
    explicit Descriptor(int value) : mValue(value) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const { return mValue; }
    /// False when the system reports an error that writing had held back.
    bool close() {
        const int value = std::exchange(mValue, -1);
        return value < 0 || ::close(value) == 0;
    }

private:
    int mValue;
};

bool writeWhole(int target, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(target, data, size);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        if (written > 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    return true;
}

bool copyByBuffer(int source, int target) {
    std::array<char, 65536> buffer; // not cleared: most files need none of it
    while (true) {
        const ssize_t got = read(source, buffer.data(), buffer.size());
        if (got == 0) {
            return true;
        }
        if (got < 0 && errno != EINTR) {
            return false;
        }
        if (got > 0 && !writeWhole(target, buffer.data(), static_cast<std::size_t>(got))) {
            return false;
        }
    }
}

/// Lets the kernel copy as long as it can and finishes by reading and writing: some file systems
/// refuse copy_file_range, and pseudo files report its end at once.
bool copyContents(int source, int target) {
    constexpr std::size_t kChunk = std::size_t{1} << 30U;
    while (copy_file_range(source, nullptr, target, nullptr, kChunk, 0) > 0) {
    }
    return copyByBuffer(source, target);
}

bool copyInto(int source, const struct stat& status, Descriptor& target) {
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    return copyContents(source, target.get()) && futimens(target.get(), times.data()) == 0 &&
           target.close();
}

/// Without O_NONBLOCK opening a pipe would wait for its writer.
int openSource(const std::string& path, struct stat& status) {
    const int source =
        onlyOrdinary(open(systemPath(path), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    return source >= 0 && fstat(source, &status) == 0 ? source : -1;
}

} // namespace

bool copyFileContents(const std::string& from, const std::string& to) {
    struct stat status {};
    const Descriptor source(openSource(from, status));
    if (source.get() < 0) {
        return false;
    }
    // The temporary's name is short, so that a target with the longest possible name works too.
    std::string temporary = systemPath(to);
    temporary.resize(temporary.rfind('/') + 1);
    temporary += ".rc-XXXXXX";
    Descriptor target(mkostemp(temporary.data(), O_CLOEXEC));
    if (target.get() < 0) {
        return false;
    }
    if (fchmod(target.get(), status.st_mode & 0777U) == 0 &&
        copyInto(source.get(), status, target) &&
        std::rename(temporary.c_str(), systemPath(to)) == 0) {
        return true;
    }
    const int reason = errno;
    unlink(temporary.c_str());
    errno = reason;
    return false;
}

bool copyContentsInto(const std::string& from, int folder, const char* name) {
    struct stat status {};
    const Descriptor source(openSource(from, status));
    if (source.get() < 0) {
        return false;
    }
    Descriptor target(
        openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (target.get() < 0) {
        return false;
    }
    if (copyInto(source.get(), status, target)) {
        return true;
    }
    const int reason = errno;
    unlinkat(folder, name, 0);
    errno = reason;
    return false;
}

} // namespace tarn::platform
