#include "platform/ReadFile.h"

#include "platform/linux/SafeOpen.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

struct stat statusOf(std::intptr_t handle) {
    struct stat status {};
    if (fstat(static_cast<int>(handle), &status) != 0) {
        status = {};
    }
    return status;
}

} // namespace

ReadFile::~ReadFile() {
    closeQuietly(static_cast<int>(mHandle));
}

std::uint64_t ReadFile::size() const {
    return static_cast<std::uint64_t>(statusOf(mHandle).st_size);
}

std::int64_t ReadFile::modified() const {
    return statusOf(mHandle).st_mtim.tv_sec;
}

std::ptrdiff_t ReadFile::read(char* buffer, std::size_t capacity) {
    while (true) {
        const ssize_t got = ::read(static_cast<int>(mHandle), buffer, capacity);
        if (got >= 0 || errno != EINTR) {
            return got;
        }
    }
}

} // namespace tarn::platform
