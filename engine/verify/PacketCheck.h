#pragma once

#include "engine/files/StoredReader.h"
#include "engine/support/StopFlag.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace zelcore {

/// Reads the packets of a finished file and compares them with what was written. Some threads read
/// through the system's cache, one past it: a part of the file really comes from the disk, as large
/// as the disk allows without being waited for, and all of it where the file is small.
class PacketCheck {
public:
    /// `samples` in the order of their places; the first `readBefore` were read back once already,
    /// and are read again only as far as the disk allows meanwhile. Begins at once.
    PacketCheck(const std::string& path, const OsFile& file, std::vector<StoredSample> samples,
                std::size_t readBefore, const StopFlag& stop);
    PacketCheck(const PacketCheck&) = delete;
    PacketCheck& operator=(const PacketCheck&) = delete;
    ~PacketCheck();

    /// Takes its share of the work. Throws VerificationFailed when a packet is another, or Stopped.
    void finish();

private:
    /// All chunks that nobody else took, or those that were read before while others do that.
    enum class Share { Rest, ReadBefore };
    void work(const OsFile& file, std::size_t blockSize, Share share) noexcept;
    std::size_t nextChunk(Share share);
    void check(StoredReader& reader, std::size_t chunk) const;
    void openPastCache(const std::string& path);
    void startThread(const OsFile& file, std::size_t blockSize, Share share);

    const OsFile& mFile;
    OsFile mPastCache;
    const std::vector<StoredSample> mSamples;
    std::vector<std::size_t> mChunks; ///< the first sample of each
    const StopFlag& mStop;
    std::size_t mReadBefore = 0; ///< chunks
    std::atomic<std::size_t> mNext{0};
    std::atomic<std::size_t> mNextReadBefore{0};
    std::atomic<bool> mIsRestDone{false};
    std::atomic<bool> mIsEnding{false};
    std::mutex mMutex;
    std::string mFault; ///< guarded by mMutex
    std::vector<std::thread> mThreads;
};

} // namespace zelcore
