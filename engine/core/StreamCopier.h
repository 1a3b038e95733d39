#pragma once

#include "engine/core/Track.h"

namespace zelcore {

/// Takes packets over as they are.
class StreamCopier : public Track {
public:
    StreamCopier(const TrackPlan& plan, Muxer& muxer);

    void beginPart(const AVStream& stream, Ticks offset) override;
    void accept(AVPacket& packet) override;
    void endPart() override {}
    void finish() override {}

private:
    Muxer& mMuxer;
    std::size_t mTrack;
    AVRational mTimeBase{};
    std::int64_t mOffset = 0; ///< in mTimeBase
    bool mAwaitsKeyFrame = false;
};

} // namespace zelcore
