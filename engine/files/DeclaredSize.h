#pragma once

#include <cstdint>

namespace zelcore {

class SourceFile;

/// How many bytes the file's own container structure says there are: the Matroska segment, the last
/// top-level MP4 or MOV box, the RIFF chunk. 0 when the container does not say (live Matroska,
/// MPEG-TS, FLV, Ogg). libavformat takes a file that ends too early for one that ends there.
std::uint64_t declaredSize(const SourceFile& file);

/// True for an MP4 or MOV file none of whose boxes is the index, without which it cannot be read.
bool lacksIndex(const SourceFile& file);

} // namespace zelcore
