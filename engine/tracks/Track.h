#pragma once

#include "engine/media/Muxer.h"
#include "engine/support/AvHandles.h"
#include "engine/support/Losses.h"
#include "engine/tracks/TrackPlan.h"

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

    virtual void beginPart(const AVStream& stream) = 0;
    /// The packet counts in kTicks on the destination's clock. May take what it holds.
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
