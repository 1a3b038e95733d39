#pragma once

#include "engine/support/AvHandles.h"

#include <cstddef>
#include <span>

namespace zelcore {

/// What can be seen of a packet without decoding it.
class PacketShape {
public:
    explicit PacketShape(const AVCodecParameters& parameters);

    /// True for what no encoder writes: a chain of units that does not end with the packet, or a
    /// hole of zeros. A reason to decode it, no proof.
    bool looksWrong(const AVPacket& packet) const;
    /// Empty, or in a stream of ADTS frames no such frame.
    bool isUnusable(const AVPacket& packet) const;
    /// E-AC-3 of fewer than six blocks: MP4 would want several such packets in one.
    bool isPartOfFrame(const AVPacket& packet) const;
    /// Decoding can begin here and needs nothing that came before.
    bool isStart(const AVPacket& packet) const;
    /// The packet brings parameter sets with it that are not those of the stream's header.
    bool changesHeader(const AVPacket& packet) const;

    /// The header has what a decoder needs; a stream that lacks it must not be copied.
    static bool hasWholeHeader(const AVCodecParameters& parameters);

private:
    using Bytes = std::span<const std::uint8_t>;
    enum class Unit { Parameters, Start, Picture, Other };

    /// Takes the next unit off the front of `rest`; empty when there is none or it is broken.
    Bytes nextUnit(Bytes& rest) const;
    Unit kindOf(Bytes unit) const;

    AVCodecID mCodec;
    std::size_t mHole; ///< that many zeros in a row look wrong
    Bytes mHeader;
    std::size_t mLengthSize = 0; ///< of the number before each unit; 0: start codes
};

} // namespace zelcore
