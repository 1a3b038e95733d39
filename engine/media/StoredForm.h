#pragma once

#include "engine/support/AvHandles.h"
#include "engine/support/ContentHash.h"

#include <cstdint>
#include <span>

namespace zelcore {

/// The bytes that a packet becomes in the file, by their hash.
struct StoredPacket {
    std::uint64_t hash = 0;
    std::int64_t size = 0;
};

/// How the MP4 muxer stores a track's packets: as they are, or, for H.264 and HEVC that come as a
/// byte stream, with each unit's length in the place of its start code.
class StoredForm {
public:
    explicit StoredForm(const AVCodecParameters& parameters);

    /// The packets come in their order: without decoder data the first one decides.
    StoredPacket of(std::span<const std::uint8_t> packet);

private:
    static StoredPacket ofByteStream(std::span<const std::uint8_t> packet);

    AVCodecID mCodec;
    bool mIsKnown = false;
    bool mIsByteStream = false;
};

/// Units of an H.264 or HEVC byte stream, one after the other, without their start codes; cut where
/// the MP4 muxer cuts them.
class ByteStreamUnits {
public:
    explicit ByteStreamUnits(std::span<const std::uint8_t> stream);
    /// False when there is none left.
    bool next(std::span<const std::uint8_t>& unit);

private:
    std::span<const std::uint8_t> mRest;
};

} // namespace zelcore
