#include "engine/verify/PacketCheck.h"

#include "engine/platform/OsPath.h"
#include "engine/support/ContentHash.h"
#include "engine/verify/FinishedFileFault.h"

#include <algorithm>
#include <memory>
#include <new>
#include <system_error>

namespace zelcore {

namespace {

// What is read past the cache has to lie on such places, in the file and in memory.
constexpr std::size_t kAlignment = 4096;
constexpr std::size_t kBlock = 256 * 1024; // stays in the processor's cache until it is hashed
constexpr std::size_t kDirectBlock = 1024 * 1024;
constexpr std::uint64_t kChunk = 4 * 1024 * 1024;
// Up to here the disk is waited for: the whole file comes from it.
constexpr std::size_t kSmallFile = 4;

} // namespace

/// A window over the file that moves forward.
class PacketCheck::Reader {
public:
    struct AlignedDelete {
        void operator()(std::uint8_t* memory) const {
            ::operator delete (memory, std::align_val_t{kAlignment});
        }
    };
    using AlignedBytes = std::unique_ptr<std::uint8_t, AlignedDelete>;
    static AlignedBytes alignedBytes(std::size_t size) {
        return AlignedBytes(
            static_cast<std::uint8_t*>(::operator new (size, std::align_val_t{kAlignment})));
    }

    Reader(const OsFile& file, std::size_t size)
        : mFile(file), mSize(size), mBytes(alignedBytes(size)) {}

    std::uint64_t hashOf(const StoredSample& sample) {
        std::uint64_t position = sample.position;
        std::size_t left = sample.size;
        mHash.restart();
        while (left > 0) {
            if (position < mBegin || position >= mEnd) {
                read(position);
            }
            const std::uint8_t* bytes = mBytes.get() + (position - mBegin);
            const auto size = std::min<std::size_t>(left, mEnd - position);
            if (size == sample.size) {
                return zelcore::hashOf(bytes, size);
            }
            mHash.add(bytes, size);
            position += size;
            left -= size;
        }
        return mHash.value();
    }

private:
    void read(std::uint64_t position) {
        mBegin = position / kAlignment * kAlignment;
        int error = 0;
        const std::int64_t got = mFile.readAt(mBegin, mBytes.get(), mSize, error);
        if (got < 0) {
            throwFinishedFileFault("cannot be read: " + systemErrorText(error));
        }
        mEnd = mBegin + static_cast<std::uint64_t>(got);
        if (position >= mEnd) {
            throwFinishedFileFault("is cut short");
        }
    }

    const OsFile& mFile;
    const std::size_t mSize;
    const AlignedBytes mBytes;
    std::uint64_t mBegin = 0;
    std::uint64_t mEnd = 0;
    RunningHash mHash;
};

PacketCheck::PacketCheck(const std::string& path, const OsFile& file,
                         std::vector<StoredSample> samples, const StopFlag& stop)
    : mFile(file), mSamples(std::move(samples)), mStop(stop) {
    std::uint64_t end = 0;
    for (std::size_t sample = 0; sample < mSamples.size(); ++sample) {
        if (mChunks.empty() || mSamples[sample].position >= end) {
            mChunks.push_back(sample);
            end = mSamples[sample].position + kChunk;
        }
    }
    openPastCache(path);
    if (mChunks.size() > kSmallFile) {
        startThread(mFile, kBlock);
        if (mPastCache.isOpen()) {
            startThread(mPastCache, kDirectBlock);
        }
    }
}

void PacketCheck::openPastCache(const std::string& path) {
    if (OsFile::openPastCache(path, mPastCache) != 0) {
        return;
    }
    // Some file systems say only now that they have no such thing.
    int error = 0;
    const auto first = Reader::alignedBytes(kAlignment);
    if (mPastCache.readAt(0, first.get(), kAlignment, error) < 0) {
        mPastCache.close();
    }
}

PacketCheck::~PacketCheck() {
    mIsEnding = true;
    for (std::thread& thread : mThreads) {
        thread.join();
    }
}

void PacketCheck::startThread(const OsFile& file, std::size_t blockSize) {
    try {
        mThreads.emplace_back([this, &file, blockSize] {
            prepareEngineThread("zel-verify");
            work(file, blockSize);
        });
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch)
        // No thread to be had: finish() does all of it.
    }
}

void PacketCheck::work(const OsFile& file, std::size_t blockSize) noexcept {
    try {
        Reader reader(file, blockSize);
        while (!mIsEnding && !mStop.isRaised()) {
            const std::size_t chunk = mNext++;
            if (chunk >= mChunks.size()) {
                return;
            }
            checkNext(reader, chunk);
        }
    } catch (const std::exception& fault) {
        mIsEnding = true;
        try {
            const std::lock_guard lock(mMutex);
            mFault = fault.what();
        } catch (...) { // NOLINT(bugprone-empty-catch): mIsEnding tells
        }
    }
}

void PacketCheck::checkNext(Reader& reader, std::size_t chunk) const {
    const std::size_t end = chunk + 1 < mChunks.size() ? mChunks[chunk + 1] : mSamples.size();
    for (std::size_t i = mChunks[chunk]; i < end && !mIsEnding && !mStop.isRaised(); ++i) {
        const StoredSample& sample = mSamples[i];
        if (reader.hashOf(sample) != sample.hash) {
            throwFinishedFileFault(
                text("has another packet at ", sample.position, " than was written there"));
        }
    }
}

void PacketCheck::finish() {
    const bool isSmall = mThreads.empty() && mPastCache.isOpen() && mChunks.size() <= kSmallFile;
    work(isSmall ? mPastCache : mFile, isSmall ? kDirectBlock : kBlock);
    for (std::thread& thread : mThreads) {
        thread.join();
    }
    mThreads.clear();
    mStop.throwIfRaised();
    if (mIsEnding) {
        const std::lock_guard lock(mMutex);
        throw Failure(ErrorCode::VerificationFailed, mFault.empty() ? "Out of memory" : mFault);
    }
}

} // namespace zelcore
