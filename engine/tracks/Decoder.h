#pragma once

#include "engine/support/AvHandles.h"
#include "engine/support/Losses.h"

#include <cstdint>

namespace zelcore {

/// Decodes the packets of one stream of one part, and counts what does not decode.
class Decoder {
public:
    enum class Purpose {
        Frames,
        Check, ///< whether it decodes; what it looks like does not matter
    };

    /// Of the packets, and what takes it to the destination's.
    struct Clock {
        AVRational base = kTicks;
        Ticks offset = 0;
    };

    /// Throws UnsupportedCodec.
    Decoder(const AVStream& stream, Losses& losses, Clock clock = {kTicks, 0},
            Purpose purpose = Purpose::Frames);
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    const AVCodecContext& codec() const { return *mCodec; }

    /// Hands a packet in, null at the end, and `onFrame(AVFrame&)` what comes out. A damaged packet
    /// costs its own frames, a loss and a trace line.
    template <class OnFrame>
    void decode(const AVPacket* packet, OnFrame onFrame) {
        send(packet);
        while (receive()) {
            onFrame(*mFrame);
        }
    }
    /// At the end: when there were packets and none of them became a frame, all is lost.
    void settle();
    /// Frames that came out damaged count, too.
    bool hasFoundDamage() const { return mHasFoundDamage; }
    bool hasDecodedNothing() const { return mPackets > 0 && mFrames == 0; }

private:
    void send(const AVPacket* packet);
    bool receive();
    void noteFailure(int result);
    void addLoss(std::int64_t time, std::int64_t duration);

    const Clock mClock;
    const AVRational mFrameRate;
    Losses& mLosses;
    CodecPtr mCodec;
    FramePtr mFrame;
    std::int64_t mPackets = 0;
    std::int64_t mFrames = 0;
    std::int64_t mFirstTime = kNoTime; ///< of the packets sent
    std::int64_t mLastTime = kNoTime;
    std::int64_t mLastDuration = 0;
    bool mHasFoundDamage = false;
};

} // namespace zelcore
