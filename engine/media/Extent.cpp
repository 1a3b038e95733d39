#include "engine/media/Extent.h"

#include <algorithm>

namespace zelcore {

namespace {

// Containers without durations have libavformat guess, often a single tick of their clock. Nobody
// sees a last picture that is gone at once.
constexpr Ticks kShortestLastPicture = kTicks.den / 25;

} // namespace

void Extent::add(Ticks time, Ticks duration) {
    if (!isEmpty() && time <= mLatest) {
        return;
    }
    if (mType == AVMEDIA_TYPE_VIDEO) {
        const Ticks interval = isEmpty() ? kShortestLastPicture : addTimes(time, -mLatest);
        duration = std::max(duration, std::min(interval, kShortestLastPicture));
    }
    mBegin = isEmpty() ? time : mBegin;
    mLatest = time;
    mDuration = std::max<Ticks>(duration, 0);
}

} // namespace zelcore
