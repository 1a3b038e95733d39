#include "engine/EngineUnderTest.h"
#include "engine/MediaProbe.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace zelcore::testing {

using ::testing::Pointwise;
using ::testing::SizeIs;

namespace {

const ProbedTrack& video(const std::vector<ProbedTrack>& tracks) {
    return *std::ranges::find_if(tracks, &ProbedTrack::isVideo);
}
const ProbedTrack& sound(const std::vector<ProbedTrack>& tracks) {
    return *std::ranges::find_if_not(tracks, &ProbedTrack::isVideo);
}

MATCHER_P(IsNearAnother, tolerance, "") {
    return std::abs(std::get<0>(arg) - std::get<1>(arg)) <= tolerance;
}

/// Times from the first on, in order of showing.
std::vector<double> shownAt(const ProbedTrack& track) {
    std::vector<double> times = track.times;
    std::ranges::sort(times);
    std::ranges::transform(times, times.begin(),
                           [first = times.front()](double each) { return each - first; });
    return times;
}

} // namespace

class CopiedRecording : public EngineTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(CopiedRecording, KeepsEveryPacketAndItsTime) {
    const auto source = probe(recording(GetParam()));
    ASSERT_NO_FATAL_FAILURE(convert({recording(GetParam())}, destination()));
    const auto made = probe(destination());
    ASSERT_THAT(made, SizeIs(source.size()));
    for (std::size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(made[i].codec, source[i].codec);
        EXPECT_EQ(made[i].packets.size(), source[i].packets.size());
        EXPECT_EQ(made[i].decoded, source[i].decoded);
        EXPECT_EQ(made[i].damaged, 0U);
        EXPECT_NEAR(made[i].end, source[i].end - std::max(0.0, source[0].times[0]), 0.1);
        EXPECT_THAT(shownAt(made[i]), Pointwise(IsNearAnother(0.002), shownAt(source[i])));
        // MPEG-TS frames its packets in another way.
        if (!std::string(GetParam()).ends_with(".ts")) {
            EXPECT_EQ(made[i].packets, source[i].packets);
        }
    }
    EXPECT_EQ(trace.count(2, "is copied"), made.size());
}

INSTANTIATE_TEST_SUITE_P(Containers, CopiedRecording,
                         ::testing::Values("h264-aac.mkv", "h264-aac.flv", "h264-aac.ts",
                                           "h264-aac.mp4", "no-audio.mkv", "live.mkv",
                                           "variable-copied.mkv"));

struct Transcoded {
    const char* name;
    int width; ///< 0: sound alone
    int height;
    int channels; ///< 0: picture alone
};

class TranscodedRecording : public EngineTest, public ::testing::WithParamInterface<Transcoded> {};

TEST_P(TranscodedRecording, BecomesH264AndAacOfTheSameLength) {
    const Transcoded& expected = GetParam();
    if (!canDecode(recording(expected.name))) {
        expectRefusal(20011, {recording(expected.name)}, destination()); // FFmpeg built without it
        return;
    }
    const auto source = probe(recording(expected.name));
    ASSERT_NO_FATAL_FAILURE(convert({recording(expected.name)}, destination()));
    const auto made = probe(destination());
    ASSERT_THAT(made, SizeIs((expected.width > 0 ? 1 : 0) + (expected.channels > 0 ? 1 : 0)));
    if (expected.width > 0) {
        EXPECT_EQ(video(made).codec, "h264");
        EXPECT_EQ(video(made).width, expected.width);
        EXPECT_EQ(video(made).height, expected.height);
        EXPECT_EQ(video(made).decoded, video(source).decoded);
        EXPECT_THAT(shownAt(video(made)), Pointwise(IsNearAnother(0.002), shownAt(video(source))));
        EXPECT_NEAR(video(made).end, video(source).end, 0.1);
    }
    if (expected.channels > 0) {
        EXPECT_EQ(sound(made).codec, "aac");
        EXPECT_EQ(sound(made).channels, expected.channels);
        EXPECT_NEAR(sound(made).end, sound(source).end, 0.1);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, TranscodedRecording,
                         ::testing::Values(Transcoded{"vp8-vorbis.webm", 160, 120, 1},
                                           Transcoded{"vp9-opus.webm", 160, 120, 1},
                                           Transcoded{"av1-opus.webm", 160, 120, 1},
                                           Transcoded{"odd-size.webm", 162, 122, 0},
                                           Transcoded{"variable-transcoded.webm", 160, 120, 0},
                                           Transcoded{"pcm.wav", 0, 0, 1},
                                           Transcoded{"vorbis.ogg", 0, 0, 1},
                                           Transcoded{"opus.ogg", 0, 0, 1},
                                           Transcoded{"eight-channels.mkv", 0, 0, 8}));

class Conversion : public EngineTest {};

TEST_F(Conversion, JoinsEqualPartsByCopyingEachWhereTheOneBeforeEnds) {
    const auto part = probe(recording("h264-aac.mkv"));
    const double length = std::max(part[0].end, part[1].end);
    for (const std::size_t count : {2U, 3U}) {
        const std::vector<std::string> parts(count, recording("h264-aac.mkv"));
        ASSERT_NO_FATAL_FAILURE(convert(parts, destination()));
        const auto made = probe(destination());
        ASSERT_THAT(made, SizeIs(2));
        for (std::size_t i = 0; i < made.size(); ++i) {
            const std::size_t each = part[i].packets.size();
            ASSERT_EQ(made[i].packets.size(), count * each);
            EXPECT_EQ(made[i].damaged, 0U);
            for (std::size_t n = 1; n < count; ++n) {
                EXPECT_NEAR(made[i].times[n * each], static_cast<double>(n) * length, 0.025);
                EXPECT_TRUE(std::equal(part[i].packets.begin(), part[i].packets.end(),
                                       made[i].packets.begin() + static_cast<long>(n * each)));
            }
        }
        EXPECT_EQ(video(made).decoded, count * video(part).decoded);
    }
}

TEST_F(Conversion, JoinsDifferingPartsByTranscodingToTheFirstOnesParameters) {
    const auto first = probe(recording("h264-aac.mkv"));
    const auto second = probe(recording("other-parameters.mkv"));
    ASSERT_NO_FATAL_FAILURE(convert(
        {recording("h264-aac.mkv"), recording("other-parameters.mkv"), recording("vp9-opus.webm")},
        destination()));
    const auto made = probe(destination());
    ASSERT_THAT(made, SizeIs(2));
    EXPECT_EQ(video(made).width, 160);
    EXPECT_EQ(video(made).height, 120);
    EXPECT_EQ(sound(made).sampleRate, 48000);
    EXPECT_EQ(video(made).decoded, 30U + 25U + 30U);
    EXPECT_NEAR(video(made).end, 5, 0.15);
    EXPECT_NEAR(sound(made).end, 5, 0.15);
    EXPECT_NEAR(static_cast<double>(sound(made).decoded) / 48000, 5, 0.15);
}

TEST_F(Conversion, KeepsAKindOfTrackThatOnlyALaterPartHas) {
    ASSERT_NO_FATAL_FAILURE(
        convert({recording("pcm.wav"), recording("h264-aac.mkv")}, destination()));
    const auto made = probe(destination());
    ASSERT_THAT(made, SizeIs(2));
    EXPECT_NEAR(video(made).times.front(), 2, 0.1);
    EXPECT_NEAR(sound(made).end, 4, 0.1);
}

TEST_F(Conversion, FillsAGapInTheSoundWithSilence) {
    ASSERT_NO_FATAL_FAILURE(convert({recording("gap.mkv")}, destination()));
    const auto made = probe(destination());
    EXPECT_NEAR(static_cast<double>(sound(made).decoded) / 48000, 3, 0.1);
}

TEST_F(Conversion, LeavesATrackOutThatNeverGetsAPacket) {
    ASSERT_NO_FATAL_FAILURE(convert({recording("muted.mkv")}, destination()));
    EXPECT_THAT(probe(destination()), SizeIs(1));
    ASSERT_NO_FATAL_FAILURE(
        convert({recording("muted.mkv"), recording("h264-aac.mkv")}, destination()));
    EXPECT_NEAR(sound(probe(destination())).times.front(), 2, 0.1);
}

TEST_F(Conversion, LeavesSubtitlesOutAndSaysSo) {
    ASSERT_NO_FATAL_FAILURE(convert({recording("subtitles.mkv")}, destination()));
    EXPECT_THAT(probe(destination()), SizeIs(2));
    EXPECT_EQ(trace.count(1, "is left out: subtitle"), 1U);
}

TEST_F(Conversion, ReplacesAnOlderDestinationAndTakesAnyName) {
    const std::string odd = folder / "\xC3\xBC\xE4\xBC\x9A\xE8\xAD\xB0 100% (1).mp4";
    const std::string longest = folder / (std::string(251, 'n') + ".mp4");
    for (const std::string& name : {folder.write("out.mp4", "older"), odd, longest}) {
        ASSERT_NO_FATAL_FAILURE(convert({recording("h264-aac.mkv")}, name));
        EXPECT_THAT(probe(name), SizeIs(2));
    }
}

} // namespace zelcore::testing
