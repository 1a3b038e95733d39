#include "engine/files/FrameDigest.h"

#include <algorithm>

namespace zelcore {

namespace {

// The muxer puts less than a hundred bytes before the first packet.
constexpr std::size_t kHeadSize = 4096;

} // namespace

void FrameDigest::note(std::uint64_t position, std::span<const std::uint8_t> bytes) {
    if (mFirstBox > 0) {
        noteMoved(position, bytes);
        return;
    }
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

void FrameDigest::beginMove() {
    constexpr std::size_t kSizeBytes = 4; // big-endian, a box begins with them
    for (std::size_t i = 0; i < kSizeBytes && mHead.size() > kSizeBytes; ++i) {
        mFirstBox = mFirstBox << 8U | mHead[i];
    }
    mIsCertain = mIsCertain && mFirstBox > 0 && mFirstBox <= mHead.size();
}

void FrameDigest::noteMoved(std::uint64_t position, std::span<const std::uint8_t> bytes) {
    const std::uint64_t end = position + bytes.size();
    if (mFront.empty() && position > mFirstBox) {
        mFront.resize(static_cast<std::size_t>(position - mFirstBox));
        mEnd = position;
    }
    const std::uint64_t moved = mFirstBox + mFront.size();
    if (position >= moved) {
        mIsCertain = mIsCertain && position == mEnd;
        mEnd = end;
    } else if (position >= mFirstBox && end <= moved) {
        std::ranges::copy(bytes,
                          mFront.begin() + static_cast<std::ptrdiff_t>(position - mFirstBox));
    } else {
        mIsCertain = false;
    }
}

std::vector<std::uint8_t> FrameDigest::head() const {
    std::vector<std::uint8_t> head = mHead;
    head.insert(head.begin() + static_cast<std::ptrdiff_t>(mFirstBox), mFront.begin(),
                mFront.end());
    return head;
}

} // namespace zelcore
