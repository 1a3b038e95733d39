#pragma once

#include "engine/media/Source.h"
#include "engine/support/AvHandles.h"
#include "engine/support/ConversionSettings.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zelcore {

struct PictureSize {
    int width = 0;
    int height = 0;

    std::int64_t area() const { return static_cast<std::int64_t>(width) * height; }
};

/// A track's stream in one part.
struct PartStream {
    const AVStream* stream = nullptr;
    PictureSize largest; ///< of its pictures, as far as they were looked at
};

/// One track of the destination: where it comes from in each part and whether it is copied.
struct TrackPlan {
    const AVStream* reference = nullptr; ///< the first part's that has it: its parameters hold
    std::vector<std::optional<std::size_t>> streamOfPart; ///< stream's index in each source
    std::vector<PartStream> streams;                      ///< of the parts that have it, in order
    bool isCopied = false;
    bool keepsGroups = false; ///< it looks damaged somewhere, see CopyCheck
    bool isSurveyed = false;  ///< the largest pictures of all parts are known
    PictureQuality quality = PictureQuality::Normal; ///< where it is not
    std::string reason;                              ///< for the trace, when it is not copied
};

/// True for what MP4 carries and common players play from it; the rest is transcoded to H.264 and
/// AAC.
bool isCopyable(const AVCodecParameters& parameters);

/// The n-th video (audio) stream of each part belongs to the n-th video (audio) track. A track is
/// copied when its codec allows it and its parameters are the same in every part.
std::vector<TrackPlan> planTracks(const Sources& sources);

} // namespace zelcore
