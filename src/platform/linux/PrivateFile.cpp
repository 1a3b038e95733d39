#include "platform/PrivateFile.h"

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

constexpr int kFileNamesTried = 100;

bool isLinked(int file) {
    struct stat status {};
    return fstat(file, &status) == 0 && status.st_nlink > 0;
}

/// Some file systems know no renaming that refuses to replace, but all that refuse it know links.
bool moveWithoutReplacing(const char* from, const char* to) {
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    return (errno == EINVAL || errno == ENOSYS) && link(from, to) == 0 && unlink(from) == 0;
}

} // namespace

std::unique_ptr<PrivateFile> PrivateFile::make(const std::string& beginning) {
    for (int tries = 0; tries < kFileNamesTried; ++tries) {
        const std::string path = unforeseeableName(beginning) + kEnding;
        const int file =
            open(systemPath(path), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (file < 0 && errno != EEXIST) {
            break;
        }
        // The mark is the lock of the open file, which a second descriptor keeps beyond close().
        const int mark = file < 0 ? -1 : fcntl(file, F_DUPFD_CLOEXEC, 0);
        lockWithoutWaiting(mark);
        std::FILE* const stream = mark < 0 || !isLinked(mark) ? nullptr : fdopen(file, "wb");
        if (stream != nullptr) {
            return std::unique_ptr<PrivateFile>(new PrivateFile(path, stream, mark));
        }
        if (file >= 0) {
            unlink(systemPath(path));
        }
        closeQuietly(file);
        closeQuietly(mark);
    }
    return nullptr;
}

PrivateFile::~PrivateFile() {
    close();
    if (!mPath.empty()) {
        unlink(mPath.c_str());
    }
    closeQuietly(static_cast<int>(mMark));
}

bool PrivateFile::close() {
    std::FILE* const stream = std::exchange(mStream, nullptr);
    const bool isGood = stream != nullptr && std::ferror(stream) == 0;
    return stream != nullptr && std::fclose(stream) == 0 && isGood;
}

bool PrivateFile::moveTo(const std::string& path, bool replaces) {
    const bool moved = replaces ? std::rename(mPath.c_str(), systemPath(path)) == 0
                                : moveWithoutReplacing(mPath.c_str(), systemPath(path));
    if (moved) {
        mPath.clear();
        closeQuietly(static_cast<int>(std::exchange(mMark, -1)));
    }
    return moved;
}

bool removeLeftoverFile(const std::string& path) {
    const int file = onlyOrdinary(
        open(systemPath(path), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    const bool removed =
        file >= 0 && isOwn(file) && lockWithoutWaiting(file) && unlink(systemPath(path)) == 0;
    closeQuietly(file);
    return removed;
}

} // namespace tarn::platform
