#pragma once

#include "engine/core/AvHandles.h"

#include <cstdint>

namespace zelcore {

/// Decodes the packets of one stream of one part.
class Decoder {
public:
    /// Throws UnsupportedCodec.
    explicit Decoder(const AVStream& stream);

    const AVCodecContext& codec() const { return *mCodec; }

    /// Hands a packet in, null at the end, and `onFrame(AVFrame&)` what comes out. A damaged packet
    /// costs its own frames and a trace line.
    template <class OnFrame>
    void decode(const AVPacket* packet, OnFrame onFrame) {
        send(packet);
        while (receive()) {
            onFrame(*mFrame);
        }
    }
    /// At the end: throws SourceDamaged when there were packets and none of them became a frame.
    void throwIfNothingDecoded() const;

private:
    void send(const AVPacket* packet);
    bool receive();
    void noteDamage(int result);

    CodecPtr mCodec;
    FramePtr mFrame;
    std::int64_t mPackets = 0;
    std::int64_t mFrames = 0;
};

} // namespace zelcore
