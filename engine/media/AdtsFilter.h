#pragma once

#include "engine/support/AvHandles.h"

namespace zelcore {

/// Takes the frame headers off AAC that comes with one in front of each packet, as broadcast has
/// it; MP4 keeps them in its index. Packets without are left alone.
class AdtsFilter {
public:
    void apply(AVPacket& packet, const AVCodecParameters& parameters, AVRational timeBase);

private:
    enum class State { Unknown, Unneeded, Needed };
    State mState = State::Unknown;
    FilterPtr mFilter;
};

} // namespace zelcore
