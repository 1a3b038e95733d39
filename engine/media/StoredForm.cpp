#include "engine/media/StoredForm.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zelcore {

namespace {

using Bytes = std::span<const std::uint8_t>;

/// Where the next start code begins, two zeros and a one with a byte behind them; else the size.
std::size_t startCode(Bytes bytes) {
    for (std::size_t at = 2; at + 1 < bytes.size(); ++at) {
        const void* one = std::memchr(bytes.data() + at, 1, bytes.size() - 1 - at);
        if (one == nullptr) {
            break;
        }
        at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(one) - bytes.data());
        if (bytes[at - 1] == 0 && bytes[at - 2] == 0) {
            return at - 2;
        }
    }
    return bytes.size();
}

/// What decides is the decoder data, or in its place the first packet.
bool comesAsByteStream(AVCodecID codec, Bytes bytes) {
    if (codec == AV_CODEC_ID_H264) {
        return !bytes.empty() && bytes[0] != 1;
    }
    return codec == AV_CODEC_ID_HEVC && bytes.size() > 6 &&
           (startCode(bytes) == 0 || (bytes[0] == 0 && startCode(bytes) == 1));
}

} // namespace

ByteStreamUnits::ByteStreamUnits(Bytes stream) : mRest(stream.subspan(startCode(stream))) {
}

bool ByteStreamUnits::next(Bytes& unit) {
    const auto one = std::ranges::find_if(mRest, [](std::uint8_t byte) { return byte != 0; });
    if (mRest.end() - one < 2) {
        return false;
    }
    mRest = mRest.subspan(static_cast<std::size_t>(one - mRest.begin()) + 1);
    std::size_t size = startCode(mRest);
    // A zero before a start code belongs to that.
    if (size > 0 && size < mRest.size() && mRest[size - 1] == 0) {
        --size;
    }
    unit = mRest.first(size);
    mRest = mRest.subspan(size);
    return true;
}

StoredForm::StoredForm(const AVCodecParameters& parameters) : mCodec(parameters.codec_id) {
    if (parameters.extradata_size > 0) {
        mIsKnown = true;
        mIsByteStream = comesAsByteStream(
            mCodec, {parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)});
    }
}

StoredPacket StoredForm::of(Bytes packet) {
    if (!mIsKnown) {
        mIsKnown = true;
        mIsByteStream = comesAsByteStream(mCodec, packet);
    }
    return mIsByteStream ? ofByteStream(packet)
                         : StoredPacket{hashOf(packet.data(), packet.size()),
                                        static_cast<std::int64_t>(packet.size())};
}

StoredPacket StoredForm::ofByteStream(Bytes packet) {
    StoredPacket stored;
    RunningHash hash;
    ByteStreamUnits units(packet);
    for (Bytes unit; units.next(unit);) {
        const auto size = static_cast<std::uint32_t>(unit.size());
        const std::array<std::uint8_t, 4> length = {
            static_cast<std::uint8_t>(size >> 24U), static_cast<std::uint8_t>(size >> 16U),
            static_cast<std::uint8_t>(size >> 8U), static_cast<std::uint8_t>(size)};
        hash.add(length.data(), length.size());
        hash.add(unit.data(), unit.size());
        stored.size += static_cast<std::int64_t>(length.size() + unit.size());
    }
    stored.hash = hash.value();
    return stored;
}

} // namespace zelcore
