#include "engine/verify/PacketCheck.h"

#include "engine/files/FinishedFileFault.h"
#include "engine/platform/OsPath.h"

#include <algorithm>
#include <system_error>

namespace zelcore {

namespace {

constexpr std::size_t kDirectBlock = 1024 * 1024;
constexpr std::uint64_t kChunk = 4 * 1024 * 1024;
// Up to here the disk is waited for: the whole file comes from it.
constexpr std::size_t kSmallFile = 4;

} // namespace

PacketCheck::PacketCheck(const std::string& path, const OsFile& file,
                         std::vector<StoredSample> samples, std::size_t readBefore,
                         const StopFlag& stop)
    : mFile(file), mSamples(std::move(samples)), mStop(stop) {
    std::uint64_t end = 0;
    for (std::size_t sample = 0; sample < mSamples.size(); ++sample) {
        if (mChunks.empty() || mSamples[sample].position >= end) {
            mChunks.push_back(sample);
            end = mSamples[sample].position + kChunk;
        }
    }
    openPastCache(path);
    if (mChunks.size() <= kSmallFile) {
        return;
    }
    while (mReadBefore + 1 < mChunks.size() && mChunks[mReadBefore + 1] <= readBefore) {
        mReadBefore++;
    }
    mNext = mReadBefore;
    startThread(mFile, StoredReader::kBlock, Share::Rest);
    if (mPastCache.isOpen()) {
        startThread(mPastCache, kDirectBlock, mReadBefore > 0 ? Share::ReadBefore : Share::Rest);
    }
}

void PacketCheck::openPastCache(const std::string& path) {
    if (OsFile::openPastCache(path, mPastCache) != 0) {
        return;
    }
    // Some file systems say only now that they have no such thing.
    int error = 0;
    const auto first = StoredReader::alignedBytes(StoredReader::kAlignment);
    if (mPastCache.readAt(0, first.get(), StoredReader::kAlignment, error) < 0) {
        mPastCache.close();
    }
}

PacketCheck::~PacketCheck() {
    mIsEnding = true;
    for (std::thread& thread : mThreads) {
        thread.join();
    }
}

void PacketCheck::startThread(const OsFile& file, std::size_t blockSize, Share share) {
    try {
        mThreads.emplace_back([this, &file, blockSize, share] {
            prepareEngineThread("zel-verify");
            work(file, blockSize, share);
        });
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch)
        // No thread to be had: finish() does all of it.
    }
}

std::size_t PacketCheck::nextChunk(Share share) {
    if (share == Share::Rest) {
        return mNext++;
    }
    const std::size_t chunk = mNextReadBefore++;
    return mIsRestDone || chunk >= mReadBefore ? mChunks.size() : chunk;
}

void PacketCheck::work(const OsFile& file, std::size_t blockSize, Share share) noexcept {
    try {
        StoredReader reader(file, blockSize);
        std::size_t chunk = nextChunk(share);
        while (chunk < mChunks.size() && !mIsEnding && !mStop.isRaised()) {
            check(reader, chunk);
            chunk = nextChunk(share);
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

void PacketCheck::check(StoredReader& reader, std::size_t chunk) const {
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
    work(isSmall ? mPastCache : mFile, isSmall ? kDirectBlock : StoredReader::kBlock, Share::Rest);
    mIsRestDone = true;
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
