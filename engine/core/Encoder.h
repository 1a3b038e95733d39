#pragma once

#include "engine/core/AvHandles.h"
#include "engine/core/Muxer.h"

namespace zelcore {

/// An opened encoder and the way of its packets into the muxer.
class Encoder {
public:
    /// `codec` is configured but not opened.
    Encoder(CodecPtr codec, Muxer& muxer);

    /// Call before the muxer's header is written.
    AVStream& addTrack();
    const AVCodecContext& codec() const { return *mCodec; }
    /// Null drains.
    void encode(const AVFrame* frame);
    /// Duration of the frames to come, for encoders that do not pass it on; in the codec's clock.
    void setFrameDuration(std::int64_t duration) { mFrameDuration = duration; }

private:
    CodecPtr mCodec;
    Muxer& mMuxer;
    PacketPtr mPacket;
    std::size_t mTrack = 0;
    std::int64_t mFrameDuration = 0;
};

} // namespace zelcore
