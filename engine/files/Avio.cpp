#include "engine/files/Avio.h"

#include <cerrno>
#include <cstdio>
#include <new>

namespace zelcore {

AvioPtr makeAvio(int bufferSize, bool isForWriting, void* self, AvioRead transfer, AvioSeek seek) {
    auto* buffer = static_cast<unsigned char*>(av_mallocz(static_cast<std::size_t>(bufferSize)));
    if (buffer == nullptr) {
        throw std::bad_alloc();
    }
    AvioPtr io(avio_alloc_context(buffer, bufferSize, isForWriting ? 1 : 0, self,
                                  isForWriting ? nullptr : transfer,
                                  isForWriting ? transfer : nullptr, seek));
    if (io == nullptr) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    return io;
}

std::int64_t seekWithin(std::uint64_t size, std::uint64_t& position, std::int64_t offset,
                        int whence) noexcept {
    switch (whence & ~AVSEEK_FORCE) {
        case AVSEEK_SIZE:
            return static_cast<std::int64_t>(size);
        case SEEK_SET:
            break;
        case SEEK_CUR:
            offset += static_cast<std::int64_t>(position);
            break;
        case SEEK_END:
            offset += static_cast<std::int64_t>(size);
            break;
        default:
            return AVERROR(EINVAL);
    }
    if (offset < 0) {
        return AVERROR(EINVAL);
    }
    position = static_cast<std::uint64_t>(offset);
    return offset;
}

} // namespace zelcore
