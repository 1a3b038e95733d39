#include "engine/files/FileInput.h"

#include "engine/files/Avio.h"

#include <algorithm>

namespace zelcore {

namespace {

constexpr int kInputBuffer = 256 * 1024;

} // namespace

FileInput::FileInput(const OsFile& file, std::uint64_t size, const StopFlag& stop)
    : mFile(file),
      mSize(size),
      mStop(stop),
      mIo(makeAvio(kInputBuffer, false, this, &onRead, &onSeek)) {
}

int FileInput::onRead(void* self, std::uint8_t* buffer, int size) noexcept {
    auto& file = *static_cast<FileInput*>(self);
    if (file.mStop.isRaised()) {
        return AVERROR_EXIT;
    }
    auto wanted = static_cast<std::size_t>(size);
    if (file.mPosition >= file.mLeftOutBegin && file.mPosition < file.mLeftOutEnd) {
        wanted = std::min<std::size_t>(wanted, file.mLeftOutEnd - file.mPosition);
        file.mPosition += wanted;
        return static_cast<int>(wanted);
    }
    int error = 0;
    const std::int64_t got = file.mFile.readAt(file.mPosition, buffer, wanted, error);
    if (got <= 0) {
        return got < 0 ? AVERROR(error) : AVERROR_EOF;
    }
    file.mPosition += static_cast<std::uint64_t>(got);
    return static_cast<int>(got);
}

std::int64_t FileInput::onSeek(void* self, std::int64_t offset, int whence) noexcept {
    auto& file = *static_cast<FileInput*>(self);
    return seekWithin(file.mSize, file.mPosition, offset, whence);
}

} // namespace zelcore
