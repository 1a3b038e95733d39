#include "engine/files/SourceFile.h"

#include "engine/files/Avio.h"
#include "engine/platform/OsPath.h"

#include <cerrno>

namespace zelcore {

namespace {

// Large enough that the kernel's read-ahead works in big steps, small enough to stay in the cache;
// packets above it are read straight into place.
constexpr int kReadBufferSize = 256 * 1024;

[[noreturn]] void refuse(ErrorCode code, const std::string& path, const char* why) {
    throw Failure(code, text("Source \"", path, "\" ", why));
}

constexpr const char* kChanged = "changed while it was being converted";

} // namespace

void throwIfChanged(const std::string& path, const FileState& known) {
    FileState now;
    const int error = stateOf(path, now);
    if (error != ENOENT && error != ENOTDIR && (error != 0 || now != known)) {
        refuse(ErrorCode::SourceChanged, path, kChanged);
    }
}

SourceFile::SourceFile(std::string path, const StopFlag& stop)
    : mPath(std::move(path)), mStop(stop) {
    int error = stateOf(mPath, mOpened);
    if (error == ENOENT || error == ENOTDIR) {
        refuse(ErrorCode::SourceMissing, mPath, "does not exist");
    }
    if (error == 0 && mOpened.isFolder) {
        refuse(ErrorCode::SourceNotAFile, mPath, "is a folder");
    }
    if (error == 0 && !mOpened.isOrdinary) {
        refuse(ErrorCode::SourceNotAFile, mPath, "is a pipe or a device and no file");
    }
    if (error == 0) {
        error = OsFile::openForReading(mPath, mFile);
    }
    if (error == 0) {
        error = mFile.state(mOpened);
    }
    if (error != 0) {
        refuse(ErrorCode::SourceNotReadable, mPath,
               text("cannot be opened: ", systemErrorText(error)).c_str());
    }
    if (mOpened.size == 0) {
        refuse(ErrorCode::SourceEmpty, mPath, "is empty");
    }
    mIo = makeAvio(kReadBufferSize, false, this, &onRead, &onSeek);
}

int SourceFile::onRead(void* self, std::uint8_t* buffer, int size) noexcept {
    auto& file = *static_cast<SourceFile*>(self);
    if (file.mStop.isRaised()) {
        return AVERROR_EXIT;
    }
    int error = 0;
    const std::int64_t got =
        file.mFile.readAt(file.mPosition, buffer, static_cast<std::size_t>(size), error);
    if (got < 0) {
        file.mError = error;
        return AVERROR(error);
    }
    if (got == 0) {
        file.mShrunk = file.mShrunk || file.mPosition < file.mOpened.size;
        return AVERROR_EOF;
    }
    file.mPosition += static_cast<std::uint64_t>(got);
    return static_cast<int>(got);
}

std::int64_t SourceFile::onSeek(void* self, std::int64_t offset, int whence) noexcept {
    auto& file = *static_cast<SourceFile*>(self);
    return seekWithin(file.mOpened.size, file.mPosition, offset, whence);
}

void SourceFile::throwIfUnsound() const {
    if (mError != 0) {
        refuse(ErrorCode::SourceReadFailed, mPath,
               text("could not be read: ", systemErrorText(mError)).c_str());
    }
    FileState now;
    if (mShrunk || mFile.state(now) != 0 || now != mOpened) {
        refuse(ErrorCode::SourceChanged, mPath, kChanged);
    }
    throwIfChanged(mPath, mOpened);
}

std::size_t SourceFile::peek(std::uint64_t position, void* buffer, std::size_t size) const {
    int error = 0;
    const std::int64_t got = mFile.readAt(position, buffer, size, error);
    if (got < 0) {
        refuse(ErrorCode::SourceReadFailed, mPath,
               text("could not be read: ", systemErrorText(error)).c_str());
    }
    return static_cast<std::size_t>(got);
}

} // namespace zelcore
