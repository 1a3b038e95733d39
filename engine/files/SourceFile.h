#pragma once

#include "engine/platform/OsFile.h"
#include "engine/support/AvHandles.h"
#include "engine/support/StopFlag.h"

#include <cstdint>
#include <string>

namespace zelcore {

/// Throws when the path leads to another file, or to another state of it, than was known. That
/// nothing is there any more is no harm: what was read is still what it was.
void throwIfChanged(const std::string& path, const FileState& known);

/// A source's bytes, for FFmpeg to read. Remembers what FFmpeg's demuxers tend to swallow: read
/// errors, and a file that is not what it was when it was opened.
class SourceFile {
public:
    /// Throws when the path names nothing that could be a recording.
    SourceFile(std::string path, const StopFlag& stop);
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    AVIOContext* io() const { return mIo.get(); }
    const std::string& path() const { return mPath; }
    const FileState& state() const { return mOpened; }

    /// Throws when a read failed or the file changed since it was opened.
    void throwIfUnsound() const;
    /// For looking at a header without FFmpeg: the bytes there are, up to `size`. Throws
    /// when they cannot be read.
    std::size_t peek(std::uint64_t position, void* buffer, std::size_t size) const;

private:
    static int onRead(void* self, std::uint8_t* buffer, int size) noexcept;
    static std::int64_t onSeek(void* self, std::int64_t offset, int whence) noexcept;

    std::string mPath;
    const StopFlag& mStop;
    OsFile mFile;
    FileState mOpened;
    std::uint64_t mPosition = 0;
    int mError = 0;
    bool mShrunk = false;
    AvioPtr mIo;
};

} // namespace zelcore
