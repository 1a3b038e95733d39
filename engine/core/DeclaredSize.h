#pragma once

#include <cstdint>

namespace zelcore {

class SourceFile;

/// How many bytes the file's own container structure says there are: the Matroska segment, the last
/// top-level MP4 box, the RIFF chunk. 0 when the container does not say (live Matroska, MPEG-TS,
/// FLV, Ogg). libavformat takes a file that ends too early for one that ends there.
std::uint64_t declaredSize(const SourceFile& file);

} // namespace zelcore
