#include "engine/media/Timeline.h"

#include <gmock/gmock.h>

#include <cmath>

namespace zelcore::testing {

namespace {

/// A stretch of a recording, in seconds of the destination's clock, and by how much the source's
/// clock is off there. Pictures come every 40 ms, sound every 20 ms and a little later.
struct Stretch {
    double begin;
    double end;
    double off;
    std::string kinds = "av";
};

struct TimelineCase {
    const char* name;
    bool followsJumps;
    std::vector<Stretch> stretches;
};

constexpr double kHours = 3600;

std::vector<std::pair<double, Stamp>> packetsOf(const std::vector<Stretch>& stretches) {
    std::vector<std::pair<double, Stamp>> packets;
    for (const Stretch& stretch : stretches) {
        const auto pieces = static_cast<int>(std::lround((stretch.end - stretch.begin) * 50));
        for (int i = 0; i < pieces; ++i) {
            for (const auto& [kind, lane] : {std::pair('v', 0U), std::pair('a', 1U)}) {
                if ((kind == 'v' && i % 2 != 0) || !stretch.kinds.contains(kind)) {
                    continue;
                }
                const double time = stretch.begin + i / 50.0;
                const auto ticks = static_cast<Ticks>((time + stretch.off) * kTicks.den);
                packets.push_back(
                    {time, {lane, ticks, ticks, kTicks.den / (kind == 'v' ? 25 : 50), false, 0}});
            }
        }
    }
    return packets;
}

const TimelineCase kCases[] = {
    {"late start", false, {{0, 5, 1000}}},
    {"start before zero", false, {{0, 5, -1.6}}},
    {"sound alone", false, {{0, 5, -1.6, "a"}, {5, 9, -6.6, "a"}}},
    {"sound that repeats itself", false, {{0, 4, 0, "a"}, {3.5, 7.5, 0, "a"}}},
    {"restart", false, {{0, 5, 2}, {5, 10, -5}, {10, 15, -10}}},
    {"restart soon", true, {{0, 0.5, 1}, {0.5, 3, 0.3}}},
    {"sound comes later", false, {{0, 5, 0, "v"}, {5, 6, 0}, {6, 9, -6}}},
    {"ten minutes' pause", false, {{0, 5, 0}, {605, 610, 0}}},
    {"the picture's pause", false, {{0, 5, 0}, {5, 605, 0, "a"}, {605, 610, 0}}},
    {"rare pictures", false, {{0, 0.02, 0, "v"}, {400, 400.02, 0, "v"}, {900, 900.02, 0, "v"}}},
    {"days", false, {{0, 5, 0}, {5, 10, 72 * kHours}}},
    {"break of a clock", true, {{0, 5, 1}, {5, 10, 600}, {10, 12, 20}}},
    {"short pause of a clock", true, {{0, 5, 0}, {8, 12, 0}}},
    {"damaged ahead", false, {{0, 5, 0}, {5, 6, 1000}, {6, 20, 0}}},
    {"damaged behind", false, {{0, 5, 0}, {5, 6, -5}, {6, 20, 0}}},
    {"a picture ahead", false, {{0, 5, 0}, {5, 5.02, 40, "v"}, {5, 5.04, 0, "a"}, {5.04, 20, 0}}},
    {"a picture behind", true, {{0, 5, 0}, {5, 5.02, -4, "v"}, {5, 5.04, 0, "a"}, {5.04, 20, 0}}},
    {"tracks that jump one after the other",
     true,
     {{0, 5, 0}, {5, 5.4, 100, "v"}, {5, 5.4, 0, "a"}, {5.4, 10, 100}}},
};

} // namespace

TEST(Timeline, PutsEveryPacketWhereItBelongs) {
    for (const auto& [name, followsJumps, stretches] : kCases) {
        SCOPED_TRACE(name);
        constexpr Ticks kBegin = 3 * kTicks.den;
        Timeline timeline(kBegin, {AVMEDIA_TYPE_VIDEO, AVMEDIA_TYPE_AUDIO, AVMEDIA_TYPE_UNKNOWN},
                          followsJumps);
        const auto packets = packetsOf(stretches);
        for (const auto& [time, stamp] : packets) {
            timeline.add(stamp);
        }
        while (timeline.hasWaiting()) {
            timeline.decide();
        }
        double furthest = 0;
        for (const auto& [time, stamp] : packets) {
            ASSERT_TRUE(timeline.hasOffset());
            const double placed = toSeconds(stamp.shown + timeline.takeOffset() - kBegin);
            furthest = std::max(furthest, std::abs(placed - time));
        }
        EXPECT_LT(furthest, 0.05);
        EXPECT_NEAR(toSeconds(timeline.end() - kBegin), stretches.back().end, 0.05);
        EXPECT_FALSE(timeline.hasOffset());
    }
}

TEST(TimelineOfReorderedPictures, TakesAnEarlierOneForOneInAnotherOrderAndNotForAReturn) {
    Timeline timeline(0, {AVMEDIA_TYPE_VIDEO}, false);
    const double shown[] = {0, 2.4, 2, 1.5, 2.2};
    const double decoded[] = {-1, -1, 0, 1.5, 2}; // guessed where the container has none
    for (std::size_t i = 0; i < std::size(shown); ++i) {
        const auto ticks = [](double time) { return static_cast<Ticks>(time * kTicks.den); };
        timeline.add({0, decoded[i] < 0 ? kNoTime : ticks(decoded[i]), ticks(shown[i]), 0, true});
    }
    while (timeline.hasWaiting()) {
        timeline.decide();
    }
    for (std::size_t i = 0; i < std::size(shown); ++i) {
        ASSERT_TRUE(timeline.hasOffset());
        EXPECT_EQ(timeline.takeOffset(), 0) << i;
    }
}

} // namespace zelcore::testing
