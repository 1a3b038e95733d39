#pragma once

#include "engine/tracks/Orientation.h"

namespace zelcore {

struct TrackPlan;

/// What the pictures of a transcoded track are brought to.
struct Canvas {
    int width = 0; ///< even, as the height
    int height = 0;
    AVRational pixelAspect{0, 1};
    /// The parts lie differently and are turned upright; otherwise the track says how they lie.
    bool isTurned = false;
    bool isInterlaced = false;
    AVFieldOrder fieldOrder = AV_FIELD_UNKNOWN;
    AVColorRange range = AVCOL_RANGE_MPEG;
    AVColorSpace space = AVCOL_SPC_UNSPECIFIED;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVChromaLocation chromaLocation = AVCHROMA_LOC_UNSPECIFIED;
};

/// The shape of the largest pictures among the parts, and the first part's colours. `keepsFormat`:
/// the encoder can write full-range and interlaced pictures.
Canvas canvasFor(const TrackPlan& plan, bool keepsFormat);

/// The shape of pixels by the container's word or else the codec's; 0 where neither says.
AVRational saidAspect(const AVStream& stream);
/// Pixel's width by its height; 1 where nothing says.
double pixelAspectOf(AVRational aspect);
bool isRgb(int pixelFormat);
/// What the picture says or, where it says nothing, what its format means.
AVColorRange rangeOf(int pixelFormat, AVColorRange said);

} // namespace zelcore
