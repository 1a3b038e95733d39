#pragma once

#include "engine/core/AvHandles.h"
#include "engine/core/Losses.h"
#include "engine/core/Muxer.h"
#include "engine/core/TrackPlan.h"

#include <memory>

namespace zelcore {

/// One track of the destination at work. Per part that has it: beginPart, accept its packets,
/// endPart; after the last part: finish.
class Track {
public:
    Track() = default;
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;
    virtual ~Track() = default;

    /// `offset` takes the part's own clock to the destination's.
    virtual void beginPart(const AVStream& stream, Ticks offset) = 0;
    /// May take what the packet holds.
    virtual void accept(AVPacket& packet) = 0;
    virtual void endPart() = 0;
    virtual void finish() = 0;
};

/// Adds the plan's track to the muxer, whose header is not written yet.
std::unique_ptr<Track> makeTrack(const TrackPlan& plan, Muxer& muxer, Losses& losses);

/// Language, title, disposition and how pictures are meant to be looked at, for a track that is
/// transcoded. `isTurned`: its pictures lie no longer as the matrix says.
void copyTrackProperties(const AVStream& from, AVStream& to, bool isTurned = false);

} // namespace zelcore
