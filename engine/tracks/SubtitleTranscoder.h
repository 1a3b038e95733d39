#pragma once

#include "engine/support/Losses.h"
#include "engine/tracks/Track.h"

#include <string>
#include <vector>

namespace zelcore {

/// Makes MP4's timed text of any other. There, one piece of text takes the place of the one before:
/// where several are shown at a time, they are joined.
class SubtitleTranscoder : public Track {
public:
    SubtitleTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses);

    void beginPart(const AVStream& stream) override;
    void accept(AVPacket& packet) override;
    void endPart() override {}
    void finish() override;

private:
    struct Line {
        Ticks end = 0;
        bool isOpen = false; ///< nothing says how long it lasts: until the next one at most
        std::string text;
    };

    /// Writes what is shown up to then.
    void advance(Ticks to);
    void write(Ticks begin, Ticks end);
    void addLoss(Ticks begin, Ticks duration);

    Muxer& mMuxer;
    Losses& mLosses;
    const std::size_t mTrack;
    CodecPtr mDecoder;
    CodecPtr mEncoder;
    std::vector<Line> mShown;
    Ticks mReached = 0;
};

} // namespace zelcore
