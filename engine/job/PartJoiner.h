#pragma once

#include "engine/media/Chapters.h"
#include "engine/media/Source.h"
#include "engine/media/Timeline.h"
#include "engine/support/Losses.h"
#include "engine/support/Progress.h"
#include "engine/tracks/Track.h"

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace zelcore {

/// Moves the packets of every part, in list order, through the tracks, with their times on the
/// destination's clock. Each part begins exactly where the one before ended.
class PartJoiner {
public:
    PartJoiner(const Sources& sources, const std::vector<TrackPlan>& plans,
               const std::vector<std::unique_ptr<Track>>& tracks, Losses& losses,
               const StopFlag& stop, Progress& progress);

    void run();
    /// Of all parts, on the destination's clock.
    std::vector<Chapter> takeChapters() { return std::move(mChapters); }

private:
    /// A packet that waits for its offset.
    struct Waiting {
        PacketPtr packet;
        std::size_t track = 0;
    };
    using TrackOfStream = std::vector<std::optional<std::size_t>>;

    void runPart(std::size_t part);
    TrackOfStream beginPart(std::size_t part);
    Timeline timelineOf(std::size_t part) const;
    void take(AVPacket& packet, const AVStream& stream, std::size_t track, Timeline& timeline);
    /// Hands on what has its offset.
    void deliver(Timeline& timeline);
    void addChapters(const Source& source, Ticks end);
    void noteProgress(const AVPacket& packet, const Source& source);

    const Sources& mSources;
    const std::vector<TrackPlan>& mPlans;
    const std::vector<std::unique_ptr<Track>>& mTracks;
    Losses& mLosses;
    const StopFlag& mStop;
    Progress& mProgress;
    std::deque<Waiting> mWaiting;
    std::vector<PacketPtr> mSpare; ///< empty ones
    std::size_t mWaitingBytes = 0;
    bool mKeepsDecodingTimes = true; ///< the part at work
    std::optional<Ticks> mOffset;    ///< of its first packet
    std::vector<Chapter> mChapters;
    Ticks mEnd = 0;            ///< of everything so far
    std::uint64_t mBytes = 0;  ///< of all sources
    std::uint64_t mBefore = 0; ///< bytes of the parts that are done
};

} // namespace zelcore
