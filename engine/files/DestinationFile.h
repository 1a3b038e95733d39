#pragma once

#include "engine/files/FileInput.h"
#include "engine/files/FrameDigest.h"
#include "engine/platform/OsFile.h"
#include "engine/support/AvHandles.h"
#include "engine/support/StopFlag.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelcore {

/// The file that a conversion writes: a temporary beside the destination until commit() renames it
/// into place. Gone with this object when it was not committed.
class DestinationFile {
public:
    /// Throws when the destination cannot become what is asked for: no folder, not writable, a
    /// folder, device or link of that name, or one of the sources by whatever name.
    DestinationFile(std::string destination, const std::vector<std::string>& sources,
                    const StopFlag& stop);
    DestinationFile(const DestinationFile&) = delete;
    DestinationFile& operator=(const DestinationFile&) = delete;
    ~DestinationFile();

    AVIOContext* io() const { return mIo.get(); }
    const std::string& temporaryPath() const { return mTemporary; }
    std::uint64_t size() const { return mSize; }
    /// Of a long file: what the system was asked to write to the disk so far.
    std::uint64_t handedToDisk() const { return mPushedOut > kLong ? mPushedOut : 0; }
    /// All packets are written and flushed.
    void beginIndex() { mFrame.beginIndex(mSize); }
    const FrameDigest& frame() const { return mFrame; }
    /// What was written so far, to be moved behind an index that goes in front of it.
    AVIOContext* beginMove();

    /// Throws when any write so far failed.
    void throwIfFailed() const;
    /// Everything is on the disk and the file closed, each step checked. The name stays in use.
    void closeDurably();
    /// As closeDurably left it.
    const FileState& closedState() const { return mClosedState; }
    /// Renames into place, durably; over an older destination only if that was there at the start.
    void commit();

private:
    static constexpr std::uint64_t kLong = 64 * 1024 * 1024;

    static int onWrite(void* self, std::uint8_t* data, int size) noexcept;
    static std::int64_t onSeek(void* self, std::int64_t offset, int whence) noexcept;
    void refuseUnlessFree(const std::vector<std::string>& sources);
    void removeLeftovers(const std::vector<std::string>& sources) const;
    void createTemporary(const std::vector<std::string>& sources);
    int identifyTemporary(const std::vector<std::string>& sources);
    int note(const std::uint8_t* data, int size) noexcept;
    void pushOutWritten();
    [[noreturn]] void fail(int error, const char* doing) const;

    std::string mDestination;
    std::string mFolder;
    std::string mTemporary;
    const StopFlag& mStop;
    bool mIsReplacing = false; ///< of what was there at the start
    FileState mIdentity;       ///< of the temporary
    FileState mClosedState;
    OsFile mFile;
    OsFile mHold; ///< keeps the closed temporary in use until it has its name
    std::uint64_t mPosition = 0;
    std::uint64_t mSize = 0;
    std::uint64_t mPushedOut = 0;
    FrameDigest mFrame;
    std::optional<FileInput> mMoved;
    int mError = 0;
    AvioPtr mIo;
};

} // namespace zelcore
