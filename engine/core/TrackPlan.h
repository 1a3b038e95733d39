#pragma once

#include "engine/core/AvHandles.h"
#include "engine/core/Source.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zelcore {

/// One track of the destination: where it comes from in each part and whether it is copied.
struct TrackPlan {
    const AVStream* reference = nullptr; ///< the first part's that has it: its parameters hold
    const Source* referenceSource = nullptr;
    std::vector<std::optional<std::size_t>> streamOfPart; ///< stream's index in each source
    bool isCopied = false;
    std::string reason; ///< for the trace, when it is not copied
};

/// True for a codec that MP4 carries and that common players play from it; the others are
/// transcoded to H.264 and AAC.
bool isCopyable(AVCodecID codec);

/// The n-th video (audio) stream of each part belongs to the n-th video (audio) track. A track is
/// copied when its codec allows it and its parameters are the same in every part.
std::vector<TrackPlan> planTracks(const Sources& sources);

} // namespace zelcore
