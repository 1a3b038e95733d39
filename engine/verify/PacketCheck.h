#pragma once

#include "engine/platform/OsFile.h"
#include "engine/support/StopFlag.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace zelcore {

/// A packet in a finished file: where the index has it, and the bytes that were written, by hash.
struct StoredSample {
    std::uint64_t position = 0;
    std::uint64_t hash = 0;
    std::uint32_t size = 0;
};

/// Reads all packets of a finished file and compares them with what was written. Some threads read
/// through the system's cache, one past it: a part of the file really comes from the disk, as large
/// as the disk allows without being waited for, and all of it where the file is small.
class PacketCheck {
public:
    /// `samples` in the order of their places. Begins at once.
    PacketCheck(const std::string& path, const OsFile& file, std::vector<StoredSample> samples,
                const StopFlag& stop);
    PacketCheck(const PacketCheck&) = delete;
    PacketCheck& operator=(const PacketCheck&) = delete;
    ~PacketCheck();

    /// Takes its share of the work. Throws VerificationFailed when a packet is another, or Stopped.
    void finish();

private:
    class Reader;
    void work(const OsFile& file, std::size_t blockSize) noexcept;
    void checkNext(Reader& reader, std::size_t chunk) const;
    void openPastCache(const std::string& path);
    void startThread(const OsFile& file, std::size_t blockSize);

    const OsFile& mFile;
    OsFile mPastCache;
    const std::vector<StoredSample> mSamples;
    std::vector<std::size_t> mChunks; ///< the first sample of each
    const StopFlag& mStop;
    std::atomic<std::size_t> mNext{0};
    std::atomic<bool> mIsEnding{false};
    std::mutex mMutex;
    std::string mFault; ///< guarded by mMutex
    std::vector<std::thread> mThreads;
};

} // namespace zelcore
