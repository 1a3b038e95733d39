#pragma once

#include "engine/tracks/Track.h"

#include <set>
#include <vector>

namespace zelcore {

/// Takes packets over as they are.
class StreamCopier : public Track {
public:
    StreamCopier(const TrackPlan& plan, Muxer& muxer);

    void beginPart(const AVStream& stream) override;
    void accept(AVPacket& packet) override;
    void endPart() override;
    void finish() override {}

private:
    /// Gives the packets held back decoding times that lead up to `next`, and writes them.
    void writeHeld(std::int64_t next);

    Muxer& mMuxer;
    std::size_t mTrack;
    bool mAwaitsKeyFrame = false;
    std::size_t mDelay = 0; ///< how many pictures may wait to be shown
    // Where packets do not say when they are decoded:
    std::multiset<std::int64_t> mShown; ///< times of the last ones
    std::vector<PacketPtr> mHeld;       ///< a part's first ones
};

} // namespace zelcore
