#include "engine/tracks/PacketShape.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zelcore {

namespace {

/// Pictures hold no such run of zeros, sound that is even or silent has runs of up to 25. The
/// decoder has the last word. What a disk loses is longer than either.
constexpr std::size_t kHoleInPicture = 16;
constexpr std::size_t kHoleInSound = 32;

bool hasHole(std::span<const std::uint8_t> bytes, std::size_t hole) {
    static constexpr std::array<std::uint8_t, kHoleInSound> zeros{};
    for (std::size_t at = 0; at + hole <= bytes.size(); at += hole) {
        if (bytes[at] == 0 && std::memcmp(bytes.data() + at, zeros.data(), hole) == 0) {
            return true;
        }
    }
    return false;
}

bool isUnitCodec(AVCodecID codec) {
    return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC;
}

/// Where the next start code (00 00 01) begins.
std::size_t placeOfStartCode(std::span<const std::uint8_t> bytes) {
    static constexpr std::array<std::uint8_t, 3> code = {0, 0, 1};
    const auto found = std::search(bytes.begin(), bytes.end(), code.begin(), code.end());
    return static_cast<std::size_t>(found - bytes.begin());
}

} // namespace

PacketShape::PacketShape(const AVCodecParameters& parameters)
    : mCodec(parameters.codec_id),
      mHole(parameters.codec_type == AVMEDIA_TYPE_AUDIO ? kHoleInSound : kHoleInPicture),
      mHeader(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)) {
    // ISO/IEC 14496-15: both records begin with 1, and tell how long the lengths are.
    if (mCodec == AV_CODEC_ID_H264 && mHeader.size() > 6 && mHeader[0] == 1) {
        mLengthSize = (mHeader[4] & 3U) + 1U;
    } else if (mCodec == AV_CODEC_ID_HEVC && mHeader.size() > 22 && mHeader[0] == 1) {
        mLengthSize = (mHeader[21] & 3U) + 1U;
    }
}

bool PacketShape::looksWrong(const AVPacket& packet) const {
    const Bytes bytes(packet.data, static_cast<std::size_t>(packet.size));
    if (hasHole(bytes, mHole)) {
        return true;
    }
    Bytes rest = bytes;
    while (mLengthSize > 0 && !rest.empty()) {
        const Bytes unit = nextUnit(rest);
        if (unit.empty() || (unit[0] & 0x80U) != 0) {
            return true;
        }
    }
    return false;
}

bool PacketShape::isUnusable(const AVPacket& packet) const {
    // ISO/IEC 13818-7: twelve ones, and the frame's length in 13 bits.
    const std::uint8_t* head = packet.data;
    if (packet.size == 0 || mCodec != AV_CODEC_ID_AAC || !mHeader.empty()) {
        return packet.size == 0;
    }
    const bool isAdts = packet.size > 7 && head[0] == 0xFF && (head[1] & 0xF6U) == 0xF0;
    return !isAdts || ((head[3] & 3U) << 11U | static_cast<unsigned>(head[4]) << 3U |
                       head[5] >> 5U) != static_cast<unsigned>(packet.size);
}

bool PacketShape::isPartOfFrame(const AVPacket& packet) const {
    // ETSI TS 102 366: two bits for the sample rate, of which 3 is a lower one of six blocks, and
    // two for the number of blocks, of which 3 is six.
    const bool isFrame = mCodec == AV_CODEC_ID_EAC3 && packet.size > 4 && packet.data[0] == 0x0B &&
                         packet.data[1] == 0x77;
    return isFrame && (packet.data[4] & 0xC0U) != 0xC0U && (packet.data[4] & 0x30U) != 0x30U;
}

bool PacketShape::isStart(const AVPacket& packet) const {
    if ((packet.flags & AV_PKT_FLAG_KEY) == 0) {
        return false;
    }
    Bytes rest(packet.data, static_cast<std::size_t>(packet.size));
    while (isUnitCodec(mCodec) && !rest.empty()) {
        const Bytes unit = nextUnit(rest);
        const Unit kind = unit.empty() ? Unit::Picture : kindOf(unit);
        if (kind == Unit::Start || kind == Unit::Picture) {
            return kind == Unit::Start;
        }
    }
    return true;
}

bool PacketShape::changesHeader(const AVPacket& packet) const {
    if (!isUnitCodec(mCodec) || (packet.flags & AV_PKT_FLAG_KEY) == 0) {
        return false;
    }
    Bytes rest(packet.data, static_cast<std::size_t>(packet.size));
    while (!rest.empty()) {
        const Bytes unit = nextUnit(rest);
        const Unit kind = unit.empty() ? Unit::Picture : kindOf(unit);
        if (kind == Unit::Start || kind == Unit::Picture) {
            return false;
        }
        if (kind == Unit::Parameters && std::search(mHeader.begin(), mHeader.end(), unit.begin(),
                                                    unit.end()) == mHeader.end()) {
            return true;
        }
    }
    return false;
}

PacketShape::Bytes PacketShape::nextUnit(Bytes& rest) const {
    std::size_t begin = mLengthSize;
    std::size_t size = 0;
    if (mLengthSize == 0) {
        begin = std::min(placeOfStartCode(rest) + 3, rest.size());
        size = placeOfStartCode(rest.subspan(begin));
    } else if (rest.size() > mLengthSize) {
        for (std::size_t i = 0; i < mLengthSize; ++i) {
            size = size << 8U | rest[i];
        }
    }
    if (begin >= rest.size() || size > rest.size() - begin) {
        rest = {};
        return {};
    }
    Bytes unit = rest.subspan(begin, size);
    rest = rest.subspan(begin + size);
    while (mLengthSize == 0 && !unit.empty() && unit.back() == 0) {
        unit = unit.first(unit.size() - 1); // filling before the next start code
    }
    return unit;
}

PacketShape::Unit PacketShape::kindOf(Bytes unit) const {
    if (mCodec == AV_CODEC_ID_H264) {
        const unsigned type = unit[0] & 0x1FU;
        return type == 7 || type == 8  ? Unit::Parameters
               : type == 5             ? Unit::Start
               : type >= 1 && type < 5 ? Unit::Picture
                                       : Unit::Other;
    }
    const unsigned type = unit[0] >> 1U & 0x3FU;
    return type >= 32 && type <= 34   ? Unit::Parameters
           : type >= 16 && type <= 21 ? Unit::Start
           : type < 32                ? Unit::Picture
                                      : Unit::Other;
}

bool PacketShape::hasWholeHeader(const AVCodecParameters& parameters) {
    if (!isUnitCodec(parameters.codec_id)) {
        return true;
    }
    const PacketShape shape(parameters);
    const Bytes header = shape.mHeader;
    if (shape.mLengthSize == 0) {
        Bytes rest = header;
        int sets = 0;
        while (!rest.empty()) {
            const Bytes unit = shape.nextUnit(rest);
            sets += !unit.empty() && shape.kindOf(unit) == Unit::Parameters ? 1 : 0;
        }
        return sets >= (parameters.codec_id == AV_CODEC_ID_H264 ? 2 : 3);
    }
    // The numbers of sequence parameter sets and of arrays.
    return parameters.codec_id == AV_CODEC_ID_H264 ? (header[5] & 0x1FU) > 0 : header[22] >= 3;
}

} // namespace zelcore
