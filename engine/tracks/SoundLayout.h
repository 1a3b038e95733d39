#pragma once

#include "engine/support/AvHandles.h"

namespace zelcore {

/// Where the loudspeakers of these channels stand. Channels that come without a word are taken to
/// be in the order that WAVE files and FLAC have for so many; unspecified where that says nothing
/// either.
AVChannelLayout knownLayout(const AVChannelLayout& from);

/// The AAC channel configuration for sound of a known layout: the smallest that has a place for
/// each channel, so that nothing is mixed; where none has, the smallest for those that have one.
/// Only the numbered configurations, because few players understand sound described in another way.
AVChannelLayout aacLayout(const AVChannelLayout& known);

/// From `from` to `to`, in their formats and rates. Throws UnsupportedCodec.
ResamplerPtr openResampler(const AVFrame& from, const AVCodecContext& to);

} // namespace zelcore
