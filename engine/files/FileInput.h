#pragma once

#include "engine/platform/OsFile.h"
#include "engine/support/AvHandles.h"
#include "engine/support/StopFlag.h"

#include <cstdint>

namespace zelcore {

/// A finished file's bytes, for libavformat to read. A part of it can be left unread: where only
/// the index counts, the packets need not come from the disk.
class FileInput {
public:
    FileInput(const OsFile& file, std::uint64_t size, const StopFlag& stop);
    FileInput(const FileInput&) = delete;
    FileInput& operator=(const FileInput&) = delete;

    /// What is read between these positions is without meaning, and costs nothing.
    void leaveOut(std::uint64_t begin, std::uint64_t end) {
        mLeftOutBegin = begin;
        mLeftOutEnd = end;
        mIo->direct = 1;
    }
    AVIOContext* io() const { return mIo.get(); }

private:
    static int onRead(void* self, std::uint8_t* buffer, int size) noexcept;
    static std::int64_t onSeek(void* self, std::int64_t offset, int whence) noexcept;

    const OsFile& mFile;
    const std::uint64_t mSize;
    const StopFlag& mStop;
    std::uint64_t mPosition = 0;
    std::uint64_t mLeftOutBegin = 0;
    std::uint64_t mLeftOutEnd = 0;
    AvioPtr mIo;
};

} // namespace zelcore
