#pragma once

#include "engine/platform/OsFile.h"
#include "engine/support/ContentHash.h"

#include <memory>
#include <new>

namespace zelcore {

/// A packet in a finished file: where the index has it, and the bytes that were written, by hash.
struct StoredSample {
    std::uint64_t position = 0;
    std::uint64_t hash = 0;
    std::uint32_t size = 0;
};

/// A window over a file that moves forward, for taking the hashes of its packets.
class StoredReader {
public:
    /// What is read past the cache has to lie on such places, in the file and in memory.
    static constexpr std::size_t kAlignment = 4096;
    /// Stays in the processor's cache until it is hashed.
    static constexpr std::size_t kBlock = 256 * 1024;

    struct AlignedDelete {
        void operator()(std::uint8_t* memory) const {
            ::operator delete (memory, std::align_val_t{kAlignment});
        }
    };
    using AlignedBytes = std::unique_ptr<std::uint8_t, AlignedDelete>;
    static AlignedBytes alignedBytes(std::size_t size);

    StoredReader(const OsFile& file, std::size_t blockSize);

    /// Of the bytes that the file has in a sample's place. Throws VerificationFailed.
    std::uint64_t hashOf(const StoredSample& sample);
    /// What lies behind this position is not read yet: it is still to be written.
    void setEnd(std::uint64_t end) { mFileEnd = end; }

private:
    void read(std::uint64_t position);

    const OsFile& mFile;
    const std::size_t mSize;
    const AlignedBytes mBytes;
    std::uint64_t mBegin = 0;
    std::uint64_t mEnd = 0;
    std::uint64_t mFileEnd = UINT64_MAX;
    RunningHash mHash;
};

} // namespace zelcore
