#pragma once

#include "engine/media/Muxer.h"
#include "engine/support/AvHandles.h"

#include <map>

namespace zelcore {

/// An opened encoder and the way of its packets into the muxer.
class Encoder {
public:
    /// `codec` is configured but not opened.
    Encoder(CodecPtr codec, Muxer& muxer);

    /// Call before the muxer's header is written.
    AVStream& addTrack();
    const AVCodecContext& codec() const { return *mCodec; }
    /// `duration` is in the codec's clock.
    void encode(const AVFrame& frame, std::int64_t duration);
    void drain();

private:
    void writePackets();
    std::int64_t takeDuration(std::int64_t time);

    CodecPtr mCodec;
    Muxer& mMuxer;
    PacketPtr mPacket;
    std::size_t mTrack = 0;
    std::map<std::int64_t, std::int64_t> mDurations; ///< of the frames at work, by their times
};

} // namespace zelcore
