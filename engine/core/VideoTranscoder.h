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

    void beginPart(const AVStream& stream) override;
    void accept(AVPacket& packet) override;
    void endPart() override;
    void finish() override;

private:
    void encode(AVFrame& picture);
    /// Whether the picture that comes at this time begins anew, because the next one comes too late
    /// for it.
    bool mustBeKey(std::int64_t time);

    Losses& mLosses;
    Canvas mCanvas;
    const bool mIsSurveyed;
    const AVStream* mStream = nullptr; ///< of the part
    Encoder mEncoder;
    PictureFitter mFitter;
    std::optional<Decoder> mDecoder;
    std::int64_t mLastTime = kNoTime; ///< in the encoder's clock
    std::int64_t mLastDuration = 0;
    std::int64_t mLastKey = kNoTime; ///< as far as this class asked for it
};

} // namespace zelcore
