#pragma once

#include "engine/media/Extent.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

namespace zelcore {

/// What a packet says about its time, on the source's clock; kNoTime where it says nothing.
struct Stamp {
    std::size_t lane = 0; ///< whose packet it is
    Ticks decoded = kNoTime;
    Ticks shown = kNoTime;
    Ticks duration = 0;
    bool isGuessed = false; ///< the time of decoding
    Ticks hidden = 0;       ///< how much of it, from its beginning, nobody is to see or hear
};

/// Takes the clock of one part to the destination's: the part begins where it shall, a pause keeps
/// its length, and where times jump back or break off, the rest follows on. All tracks of the part
/// move alike.
///
/// Whether a jump is a pause, a new beginning or a damaged time, is told by what comes after it. So
/// the packets around a jump, and those at the beginning, wait for their offsets.
class Timeline {
public:
    /// One lane for each track, of unknown type where the part does not have it. `followsJumps` for
    /// containers whose clock may break at any time.
    Timeline(Ticks begin, const std::vector<AVMediaType>& lanes, bool followsJumps);

    void add(const Stamp& stamp);
    /// Decides about the first that waits, if any does, and about what is clear after it.
    void decide();
    bool hasWaiting() const { return !mWaiting.empty(); }
    /// Offsets come in the order in which the stamps were added.
    bool hasOffset() const { return !mOffsets.empty(); }
    Ticks takeOffset();
    /// Of everything that has got its offset.
    Ticks end() const;

private:
    struct Lane {
        AVMediaType type = AVMEDIA_TYPE_UNKNOWN;
        Extent extent; ///< on the destination's clock, as the next two
        Ticks last = kNoTime;
        Ticks next = kNoTime; ///< when the next packet is expected
        Ticks offset = kNoTime;
        bool isOrdered = false; ///< the last one's time is that of its decoding
        // Of its packets that wait and do not fit, when they are shown on the source's clock.
        Ticks runBegin = kNoTime;
        Ticks runLast = kNoTime;
    };

    bool tellsTime(const Stamp& stamp) const;
    void place(const Stamp& stamp, Ticks offset);
    void wait(const Stamp& stamp);
    bool isSettled() const;
    bool isPause() const;
    /// A step back of one track alone, or of sound that repeats itself.
    bool isOverlap() const;
    /// How far the first that waits is ahead of everything, or, below 0, behind its own track.
    Ticks jump() const;
    Ticks offsetForBeginning() const;
    Ticks offsetToFollowOn() const;
    /// One in use before under which the packet comes when it is expected.
    std::optional<Ticks> knownOffset(const Stamp& stamp) const;
    bool fits(const Stamp& stamp, Ticks offset) const;
    Ticks expected(const Lane& lane) const { return lane.next == kNoTime ? front() : lane.next; }
    Ticks front() const;

    const Ticks mBegin;
    const bool mFollowsJumps;
    std::vector<Lane> mLanes;
    std::vector<Ticks> mKnown; ///< offsets in use before, the last one in front
    std::deque<Stamp> mWaiting;
    Ticks mRunBegin = kNoTime; ///< of those that wait and do not fit
    Ticks mRunSpan = 0;
    Ticks mWaitingFront = kNoTime; ///< of those that wait and fit
    bool mHasReturned = false;     ///< those that wait, to the times before the jump
    std::deque<Ticks> mOffsets;
};

} // namespace zelcore
