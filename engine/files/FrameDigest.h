#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zelcore {

/// The bytes of the destination around its packets: those before, which the muxer mends at the end,
/// and the index behind, as they were handed to the system.
class FrameDigest {
public:
    /// Every write, in order.
    void note(std::uint64_t position, std::span<const std::uint8_t> bytes);
    /// All packets are written; what comes from here on is the index.
    void beginIndex(std::uint64_t position);

    /// All behind the file's first box is written again farther back, to its end, and what comes
    /// before that is another part of the index.
    void beginMove();

    std::uint64_t indexBegin() const { return mIndexBegin + mFront.size(); }
    /// The file's first bytes.
    std::vector<std::uint8_t> head() const;
    const std::vector<std::uint8_t>& index() const { return mIndex; }
    /// False when something was written that neither tells: then nobody can vouch for the file.
    bool isCertain() const { return mIsCertain; }

private:
    void noteMoved(std::uint64_t position, std::span<const std::uint8_t> bytes);

    std::vector<std::uint8_t> mHead;
    std::vector<std::uint8_t> mFront; ///< behind the first box, what the other parts moved for
    std::vector<std::uint8_t> mIndex;
    std::uint64_t mIndexBegin = UINT64_MAX;
    std::uint64_t mEnd = 0;
    std::size_t mFirstBox = 0; ///< its size, once the rest moves
    bool mIsCertain = true;
};

} // namespace zelcore
