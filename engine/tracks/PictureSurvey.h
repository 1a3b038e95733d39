#pragma once

#include "engine/media/Source.h"
#include "engine/support/StopFlag.h"
#include "engine/tracks/TrackPlan.h"

#include <vector>

namespace zelcore {

/// Thrown when a picture is larger than its track's canvas: the conversion starts over, on a canvas
/// for the largest.
struct PictureGrew {
    const AVStream* stream;
    PictureSize size;
};

/// Looks through the key frames of the tracks that are transcoded and notes the largest pictures in
/// the plans, which are final then. Only a recording of which a picture was found too large pays
/// for this. The sources are closed, before and afterwards.
void surveyPictures(const Sources& sources, std::vector<TrackPlan>& plans, const PictureGrew& found,
                    const StopFlag& stop);

} // namespace zelcore
