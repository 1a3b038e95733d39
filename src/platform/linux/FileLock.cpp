#include "platform/FileLock.h"

#include "platform/linux/SafeOpen.h"
#include "platform/linux/SystemPath.h"

#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace tarn::platform {

FileLock::Result FileLock::take(const std::string& path) {
    release();
    const int file = onlyOrdinary(open(
        systemPath(path), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600));
    if (file < 0) {
        return Result::Unavailable;
    }
    if (lockWithoutWaiting(file)) {
        mHandle = file;
        return Result::Taken;
    }
    const bool isHeld = errno == EWOULDBLOCK;
    closeQuietly(file);
    return isHeld ? Result::Held : Result::Unavailable;
}

void FileLock::release() {
    closeQuietly(static_cast<int>(std::exchange(mHandle, kNone)));
}

} // namespace tarn::platform
