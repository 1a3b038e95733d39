#pragma once

#include "engine/core/Decoder.h"
#include "engine/core/Encoder.h"
#include "engine/core/PictureFitter.h"
#include "engine/core/Track.h"

#include <optional>

namespace zelcore {

/// Decodes pictures and encodes them as H.264 (MPEG-4 where no such encoder is present), each at
/// its own time, so that a variable frame rate stays one.
class VideoTranscoder : public Track {
public:
    VideoTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses);

    void beginPart(const AVStream& stream, Ticks offset) override;
    void accept(AVPacket& packet) override;
    void endPart() override;
    void finish() override;

private:
    void encode(AVFrame& picture);

    Losses& mLosses;
    Encoder mEncoder;
    PictureFitter mFitter;
    std::optional<Decoder> mDecoder;
    AVRational mTimeBase{};
    Ticks mOffset = 0;
    std::int64_t mLastTime = kNoTime; ///< in the encoder's clock
};

} // namespace zelcore
