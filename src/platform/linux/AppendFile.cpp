#include "platform/AppendFile.h"

#include "platform/linux/SafeOpen.h"
#include "platform/linux/SystemPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn::platform {

bool AppendFile::open(const std::string& path, Existing existing) {
    close();
    // Only what was looked at is opened: opening alone can make a device act. Between the two
    // calls it may change, and an open pipe is no harm if it makes nobody wait.
    struct stat found {};
    if (::stat(systemPath(path), &found) == 0 && !S_ISREG(found.st_mode)) {
        errno = EINVAL;
        return false;
    }
    mHandle = onlyOrdinary(::open(
        systemPath(path), O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
    if (mHandle != kNone && existing == Existing::Emptied &&
        ::ftruncate(static_cast<int>(mHandle), 0) != 0) {
        close();
    }
    return mHandle != kNone;
}

std::size_t AppendFile::write(std::string_view bytes) {
    std::size_t taken = 0;
    while (taken < bytes.size()) {
        const ssize_t put =
            ::write(static_cast<int>(mHandle), bytes.data() + taken, bytes.size() - taken);
        if (put == 0 || (put < 0 && errno != EINTR)) {
            break;
        }
        taken += put > 0 ? static_cast<std::size_t>(put) : 0;
    }
    return taken;
}

std::int64_t AppendFile::size() const {
    struct stat found {};
    return ::fstat(static_cast<int>(mHandle), &found) == 0 ? found.st_size : 0;
}

bool AppendFile::close() {
    const std::intptr_t handle = std::exchange(mHandle, kNone);
    return handle != kNone && ::close(static_cast<int>(handle)) == 0;
}

} // namespace tarn::platform
