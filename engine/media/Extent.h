#pragma once

#include "engine/support/AvHandles.h"

namespace zelcore {

/// From when to when the pictures or the sound of a track last, by presentation time: packets come
/// in decoding order, and the one that ends last need not be the last to come.
class Extent {
public:
    explicit Extent(AVMediaType type) : mType(type) {}

    /// `duration` is 0 when nothing says.
    void add(Ticks time, Ticks duration);
    bool isEmpty() const { return mBegin == kNoTime; }
    Ticks begin() const { return mBegin; } ///< of the packet that came first
    Ticks latest() const { return mLatest; }
    Ticks end() const { return addTimes(mLatest, mDuration); }

private:
    AVMediaType mType;
    Ticks mBegin = kNoTime;
    Ticks mLatest = kNoTime; ///< when the packet shown last begins
    Ticks mDuration = 0;     ///< and how long it lasts
};

} // namespace zelcore
