#include "engine/files/FrameDigest.h"

#include <algorithm>

namespace zelcore {

namespace {

// The muxer puts less than a hundred bytes before the first packet.
constexpr std::size_t kHeadSize = 4096;

} // namespace

void FrameDigest::note(std::uint64_t position, std::span<const std::uint8_t> bytes) {
    const std::uint64_t end = position + bytes.size();
    if (position < kHeadSize) {
        const auto size = std::min<std::size_t>(bytes.size(), kHeadSize - position);
        mHead.resize(std::max<std::size_t>(mHead.size(), position + size));
        std::copy_n(bytes.begin(), size, mHead.begin() + static_cast<std::ptrdiff_t>(position));
    }
    if (position >= mIndexBegin) {
        // The muxer puts the size of each part of the index in its place afterwards.
        const auto at = static_cast<std::size_t>(position - mIndexBegin);
        mIndex.resize(std::max<std::size_t>(mIndex.size(), at + bytes.size()));
        std::ranges::copy(bytes, mIndex.begin() + static_cast<std::ptrdiff_t>(at));
    } else if (end <= mEnd ? end > kHeadSize : position != mEnd) {
        mIsCertain = false;
    }
    mEnd = std::max(mEnd, end);
}

void FrameDigest::beginIndex(std::uint64_t position) {
    mIndexBegin = position;
    mIsCertain = mIsCertain && position == mEnd;
}

} // namespace zelcore
