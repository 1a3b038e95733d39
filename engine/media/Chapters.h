#pragma once

#include "engine/support/AvHandles.h"

#include <string>
#include <vector>

namespace zelcore {

/// A named place in a recording.
struct Chapter {
    Ticks begin = 0;
    Ticks end = 0;
    std::string title;
};

/// Those that a container tells of, on its own clock, in the order of their times.
std::vector<Chapter> chaptersOf(const AVFormatContext& format);

/// Gives them to a muxer's context, their times in thousandths of a second. `chapters` are in the
/// order of their times; each ends where the next begins at the latest.
void addChapters(const std::vector<Chapter>& chapters, AVFormatContext& to);

} // namespace zelcore
