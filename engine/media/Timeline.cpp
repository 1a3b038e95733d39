#include "engine/media/Timeline.h"

#include <algorithm>
#include <cstdlib>

namespace zelcore {

namespace {

constexpr Ticks kSecond = kTicks.den;
/// Farther apart are packets that belong together in no ordinary file.
constexpr Ticks kStep = kSecond;
/// Less is rounding. Without a decoding time it is pictures in another order.
constexpr Ticks kOverlap = kSecond / 10;
constexpr Ticks kReordering = 10 * kSecond;
/// Where times come back sooner, those in between were damaged.
constexpr Ticks kDamagedSpan = 10 * kSecond;
/// Where a clock may break, a longer pause is none; elsewhere one that MP4 could hardly hold.
constexpr Ticks kLongestBreak = 10 * kSecond;
constexpr Ticks kLongestPause = 6 * 3600 * kSecond;
constexpr std::size_t kMostWaiting = 1024;
constexpr std::size_t kMostKnown = 4;

Ticks between(Ticks from, Ticks to) {
    return addTimes(to, -from);
}

Ticks timeOf(const Stamp& stamp) {
    // A guess that lies hours off is from before a jump.
    const bool isWrong = stamp.isGuessed && stamp.shown != kNoTime && stamp.decoded != kNoTime &&
                         std::abs(between(stamp.decoded, stamp.shown)) > kLongestPause;
    return stamp.decoded == kNoTime || isWrong ? stamp.shown : stamp.decoded;
}

bool isOrdered(const Stamp& stamp) {
    return stamp.decoded != kNoTime && !stamp.isGuessed;
}

Ticks beginOf(const Stamp& stamp) {
    return stamp.shown == kNoTime ? stamp.decoded : stamp.shown;
}

} // namespace

Timeline::Timeline(Ticks begin, const std::vector<AVMediaType>& lanes, bool followsJumps)
    : mBegin(begin), mFollowsJumps(followsJumps) {
    for (const AVMediaType type : lanes) {
        mLanes.push_back({type, Extent(type)});
    }
}

void Timeline::add(const Stamp& stamp) {
    if (mWaiting.empty()) {
        if (const auto offset = knownOffset(stamp)) {
            place(stamp, *offset);
            return;
        }
    }
    wait(stamp);
    if (isSettled()) {
        decide();
    }
}

void Timeline::decide() {
    if (mWaiting.empty()) {
        return;
    }
    const Ticks offset = [this] {
        if (mKnown.empty()) {
            return offsetForBeginning();
        }
        if (isPause() || isOverlap()) {
            const Ticks ofLane = mLanes[mWaiting.front().lane].offset;
            return ofLane == kNoTime ? mKnown.front() : ofLane;
        }
        return offsetToFollowOn();
    }();
    const std::deque<Stamp> waiting = std::move(mWaiting);
    mWaiting.clear();
    mRunBegin = kNoTime;
    mRunSpan = 0;
    mWaitingFront = kNoTime;
    mHasReturned = false;
    for (Lane& lane : mLanes) {
        lane.runBegin = lane.runLast = kNoTime;
    }
    place(waiting.front(), offset);
    std::for_each(waiting.begin() + 1, waiting.end(), [this](const Stamp& each) { add(each); });
}

Ticks Timeline::takeOffset() {
    const Ticks offset = mOffsets.front();
    mOffsets.pop_front();
    return offset;
}

Ticks Timeline::end() const {
    Ticks end = mBegin;
    for (const Lane& lane : mLanes) {
        end = lane.extent.isEmpty() ? end : std::max(end, lane.extent.end());
    }
    return end;
}

bool Timeline::tellsTime(const Stamp& stamp) const {
    const AVMediaType type = mLanes[stamp.lane].type;
    return (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO) && timeOf(stamp) != kNoTime;
}

void Timeline::place(const Stamp& stamp, Ticks offset) {
    mOffsets.push_back(offset);
    if (mKnown.empty() || mKnown.front() != offset) {
        std::erase(mKnown, offset);
        mKnown.insert(mKnown.begin(), offset);
        mKnown.resize(std::min(mKnown.size(), kMostKnown));
    }
    if (tellsTime(stamp)) {
        Lane& lane = mLanes[stamp.lane];
        lane.offset = offset;
        lane.isOrdered = isOrdered(stamp);
        lane.last = addTimes(timeOf(stamp), offset);
        lane.next = addTimes(lane.last, std::max<Ticks>(stamp.duration, 0));
        lane.extent.add(addTimes(beginOf(stamp), offset), stamp.duration);
    }
}

void Timeline::wait(const Stamp& stamp) {
    mWaiting.push_back(stamp);
    if (!tellsTime(stamp)) {
        return;
    }
    const Ticks time = timeOf(stamp);
    Lane& lane = mLanes[stamp.lane];
    if (const auto offset = knownOffset(stamp)) {
        const Ticks overlap = isOrdered(stamp) ? kOverlap : kReordering;
        mHasReturned =
            mHasReturned || (lane.runLast != kNoTime && beginOf(stamp) < lane.runLast - overlap);
        mWaitingFront = std::max(mWaitingFront, addTimes(time, *offset));
        return;
    }
    mRunBegin = mRunBegin == kNoTime ? time : mRunBegin;
    const Ticks span = std::abs(between(mRunBegin, time));
    mRunSpan = std::max(mRunSpan, span);
    if (span <= kDamagedSpan) {
        const bool isFirst = mBegin == 0 && mKnown.empty();
        const Ticks begin = addTimes(beginOf(stamp), isFirst ? stamp.hidden : 0);
        lane.runBegin = lane.runBegin == kNoTime ? begin : std::min(lane.runBegin, begin);
        lane.runLast = beginOf(stamp);
    }
}

bool Timeline::isSettled() const {
    if (mHasReturned || mWaiting.size() >= kMostWaiting ||
        (mWaitingFront != kNoTime && between(front(), mWaitingFront) >= kDamagedSpan)) {
        return true;
    }
    if (isPause()) {
        return mRunSpan >= kDamagedSpan; // until then it may have been damaged
    }
    return mRunSpan >= (mKnown.empty() ? kDamagedSpan : kStep) ||
           std::ranges::all_of(mLanes, [this](const Lane& lane) {
               return lane.runBegin != kNoTime || lane.type == AVMEDIA_TYPE_UNKNOWN ||
                      (lane.next == kNoTime && !mKnown.empty());
           });
}

bool Timeline::isPause() const {
    return !mKnown.empty() && !mHasReturned && jump() > 0 &&
           jump() <= (mFollowsJumps ? kLongestBreak : kLongestPause);
}

bool Timeline::isOverlap() const {
    if (jump() > 0 || jump() < -kStep) {
        return false;
    }
    const bool isAlone = mWaitingFront != kNoTime;
    const bool isSound = std::ranges::none_of(mLanes, [](const Lane& lane) {
        return lane.runBegin != kNoTime && lane.type == AVMEDIA_TYPE_VIDEO;
    });
    return isAlone || (isSound && !mFollowsJumps);
}

Ticks Timeline::jump() const {
    const Stamp& first = mWaiting.front();
    const Lane& lane = mLanes[first.lane];
    const Ticks time =
        addTimes(timeOf(first), lane.offset == kNoTime ? mKnown.front() : lane.offset);
    return time > front() ? between(front(), time) : between(expected(lane), time);
}

Ticks Timeline::offsetForBeginning() const {
    Ticks first = kNoTime;
    for (const Lane& lane : mLanes) {
        if (lane.runBegin != kNoTime) {
            first = first == kNoTime ? lane.runBegin : std::min(first, lane.runBegin);
        }
    }
    return first == kNoTime ? mBegin : between(first, mBegin);
}

Ticks Timeline::offsetToFollowOn() const {
    // No track is to overlap itself.
    Ticks offset = kNoTime;
    for (const Lane& lane : mLanes) {
        if (lane.runBegin != kNoTime) {
            const Ticks end = lane.extent.isEmpty() ? front() : lane.extent.end();
            offset = std::max(offset, between(lane.runBegin, end));
        }
    }
    return offset;
}

std::optional<Ticks> Timeline::knownOffset(const Stamp& stamp) const {
    if (mKnown.empty()) {
        return std::nullopt;
    }
    if (!tellsTime(stamp)) {
        return mKnown.front();
    }
    const Lane& lane = mLanes[stamp.lane];
    const auto error = [&](Ticks offset) {
        return std::abs(between(expected(lane), addTimes(timeOf(stamp), offset)));
    };
    std::optional<Ticks> best;
    for (const Ticks offset : {lane.offset, mKnown.front()}) {
        if (offset != kNoTime && fits(stamp, offset) && (!best || error(offset) < error(*best))) {
            best = offset;
        }
    }
    if (!best) {
        const auto older =
            std::ranges::find_if(mKnown, [&](Ticks offset) { return fits(stamp, offset); });
        best = older == mKnown.end() ? best : *older;
    }
    return best;
}

bool Timeline::fits(const Stamp& stamp, Ticks offset) const {
    const Lane& lane = mLanes[stamp.lane];
    const Ticks time = addTimes(timeOf(stamp), offset);
    const bool mayBeReordered = !isOrdered(stamp) || !lane.isOrdered;
    const Ticks last = lane.last == kNoTime ? front() : lane.last;
    const Ticks lowest = addTimes(last, -(mayBeReordered ? kReordering : kOverlap));
    return time >= lowest && time <= addTimes(std::max(front(), mWaitingFront), kStep);
}

Ticks Timeline::front() const {
    Ticks front = kNoTime;
    for (const Lane& lane : mLanes) {
        front = std::max(front, lane.next);
    }
    return front == kNoTime ? mBegin : front;
}

} // namespace zelcore
