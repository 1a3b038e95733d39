#pragma once

#include "engine/core/Muxer.h"
#include "engine/core/StopFlag.h"

#include <string>
#include <vector>

namespace zelcore {

/// Opens a finished file anew, by its name, and compares what a player would find in it with what
/// was written: tracks, codecs, sizes, packets, durations, and that every packet lies inside the
/// file. Throws VerificationFailed.
void verify(const std::string& path, std::uint64_t size, const std::vector<WrittenTrack>& written,
            const StopFlag& stop);

} // namespace zelcore
