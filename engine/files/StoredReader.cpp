#include "engine/files/StoredReader.h"

#include "engine/files/FinishedFileFault.h"
#include "engine/platform/OsPath.h"

#include <algorithm>

namespace zelcore {

StoredReader::AlignedBytes StoredReader::alignedBytes(std::size_t size) {
    return AlignedBytes(
        static_cast<std::uint8_t*>(::operator new (size, std::align_val_t{kAlignment})));
}

StoredReader::StoredReader(const OsFile& file, std::size_t blockSize)
    : mFile(file), mSize(blockSize), mBytes(alignedBytes(blockSize)) {
}

std::uint64_t StoredReader::hashOf(const StoredSample& sample) {
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

void StoredReader::read(std::uint64_t position) {
    mBegin = position / kAlignment * kAlignment;
    int error = 0;
    const auto size = std::min<std::uint64_t>(mSize, mFileEnd - std::min(mBegin, mFileEnd));
    const std::int64_t got =
        mFile.readAt(mBegin, mBytes.get(), static_cast<std::size_t>(size), error);
    if (got < 0) {
        throwFinishedFileFault("cannot be read: " + systemErrorText(error));
    }
    mEnd = mBegin + static_cast<std::uint64_t>(got);
    if (position >= mEnd) {
        throwFinishedFileFault("is cut short");
    }
}

} // namespace zelcore
