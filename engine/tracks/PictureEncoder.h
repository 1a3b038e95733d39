#pragma once

#include "engine/tracks/Canvas.h"

namespace zelcore {

/// The best encoder for pictures that is present. Throws UnsupportedCodec when none is.
const AVCodec& bestPictureEncoder();

/// Whether it writes interlaced pictures, and tells the range of the colours.
bool keepsFormat(const AVCodec& encoder);

/// Set up for the canvas, and not opened. Throws UnsupportedCodec for what is too large.
CodecPtr pictureEncoder(const AVCodec& encoder, const Canvas& canvas, const TrackPlan& plan);

} // namespace zelcore
