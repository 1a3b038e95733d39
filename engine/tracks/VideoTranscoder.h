#pragma once

#include "engine/tracks/Decoder.h"
#include "engine/tracks/Encoder.h"
#include "engine/tracks/PictureFitter.h"
#include "engine/tracks/Track.h"

#include <optional>

namespace zelcore {

/// Decodes pictures and encodes them as H.264 (MPEG-4 where no such encoder is present), each at
/// its own time, so that a variable frame rate stays one.
class VideoTranscoder : public Track {
public:
    VideoTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses);

    void beginPart(const AVStream& stream) override;
    void accept(AVPacket& packet) override;
    void endPart() override;
    void finish() override;

private:
    void encode(AVFrame& picture);
    /// `next` is when the picture after the one held comes: it is a key frame when the next one
    /// would be too far from the last.
    void encodeHeld(std::int64_t next);

    Losses& mLosses;
    Canvas mCanvas;
    const bool mIsSurveyed;
    const AVStream* mStream = nullptr; ///< of the part
    Encoder mEncoder;
    PictureFitter mFitter;
    std::optional<Decoder> mDecoder;
    FramePtr mHeld = makeFrame();     ///< fitted, until the next one's time is known
    std::int64_t mLastTime = kNoTime; ///< in the encoder's clock
    std::int64_t mLastDuration = 0;   ///< of the picture held, in the same
    std::int64_t mLastKey = kNoTime;  ///< as far as this class asked for it
};

} // namespace zelcore
