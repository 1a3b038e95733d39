#pragma once

#include "engine/core/Losses.h"
#include "engine/core/Progress.h"
#include "engine/core/Source.h"
#include "engine/core/Track.h"

#include <memory>
#include <vector>

namespace zelcore {

/// Moves the packets of every part, in list order, through the tracks. Each part begins exactly
/// where the one before ended.
class PartJoiner {
public:
    PartJoiner(const Sources& sources, const std::vector<TrackPlan>& plans,
               const std::vector<std::unique_ptr<Track>>& tracks, Losses& losses,
               const StopFlag& stop, Progress& progress);

    void run();

private:
    void runPart(std::size_t part);
    /// When the packet ends on the destination's clock.
    static Ticks endOf(const AVPacket& packet, const AVStream& stream, Ticks offset);
    void noteProgress(const AVPacket& packet, const Source& source, Ticks end);

    const Sources& mSources;
    const std::vector<TrackPlan>& mPlans;
    const std::vector<std::unique_ptr<Track>>& mTracks;
    Losses& mLosses;
    const StopFlag& mStop;
    Progress& mProgress;
    Ticks mEnd = 0;            ///< of everything so far
    Ticks mTotal = 0;          ///< by the containers' word, 0 when one of them gives none
    std::uint64_t mBytes = 0;  ///< of all sources
    std::uint64_t mBefore = 0; ///< bytes of the parts that are done
};

} // namespace zelcore
