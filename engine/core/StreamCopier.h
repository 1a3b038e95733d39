#pragma once

#include "engine/core/Track.h"

#include <vector>

namespace zelcore {

/// Takes packets over as they are.
class StreamCopier : public Track {
public:
    StreamCopier(const TrackPlan& plan, Muxer& muxer, Losses& losses);

    void beginPart(const AVStream& stream) override;
    void accept(AVPacket& packet) override;
    void endPart() override;
    void finish() override {}

private:
    /// Gives the packets held back decoding times that lead up to `next`, and writes them.
    void writeHeld(std::int64_t next);

    Muxer& mMuxer;
    Losses& mLosses;
    std::size_t mTrack;
    bool mAwaitsKeyFrame = false;
    bool mKnowsDecodingTime = false; ///< of the part's first packets
    std::vector<PacketPtr> mHeld; ///< a part's first packets, as long as none tells a decoding time
};

} // namespace zelcore
