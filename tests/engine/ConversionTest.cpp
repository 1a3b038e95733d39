#include "engine/EngineUnderTest.h"
#include "engine/MediaProbe.h"

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
double secondsOf(const ProbedTrack& sound) {
    return static_cast<double>(sound.decoded) / 48000;
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

class Conversion : public EngineTest {
protected:
    /// What the joined recordings of these names become: as many tracks.
    void join(std::vector<std::string> names, std::size_t tracks = 2) {
        std::ranges::transform(names, names.begin(), recording);
        ASSERT_NO_FATAL_FAILURE(convert(names, destination));
        made = probe(destination);
        ASSERT_THAT(made, SizeIs(tracks));
    }
    std::vector<ProbedTrack> made;
};

class OneRecording : public Conversion, public ::testing::WithParamInterface<std::string> {};

TEST_P(OneRecording, KeepsItsPicturesAndSoundAtTheirTimesAndItsPacketsWhereTheyFit) {
    const auto source = probe(recording(GetParam()));
    ASSERT_NO_FATAL_FAILURE(join({GetParam()}, source.size()));
    const bool isCopied = source[0].codec == "h264";
    EXPECT_EQ(trace.count(2, "is copied"), isCopied ? std::ssize(made) : 0);
    for (std::size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(made[i].codec, made[i].isVideo() ? "h264" : "aac");
        EXPECT_EQ(made[i].width, (source[i].width + 1) / 2 * 2);
        EXPECT_EQ(made[i].height, (source[i].height + 1) / 2 * 2);
        EXPECT_EQ(made[i].channels, source[i].channels);
        EXPECT_EQ(made[i].damaged, 0U);
        EXPECT_NEAR(made[i].end, source[i].end - std::max(0.0, source[0].times[0]), 0.1);
        if (isCopied || made[i].isVideo()) {
            EXPECT_EQ(made[i].decoded, source[i].decoded);
            EXPECT_THAT(shownAt(made[i]),
                        Pointwise(::testing::DoubleNear(0.002), shownAt(source[i])));
        }
        // MPEG-TS frames its packets in another way.
        if (isCopied && !GetParam().ends_with(".ts")) {
            EXPECT_EQ(made[i].packets, source[i].packets);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, OneRecording,
                         ::testing::Values("h264-aac.mkv", "h264-aac.flv", "h264-aac.ts",
                                           "h264-aac.mp4", "no-audio.mkv", "live.mkv",
                                           "variable-copied.mkv", "vp8-vorbis.webm",
                                           "vp9-opus.webm", "av1-opus.webm", "odd-size.webm",
                                           "variable-transcoded.webm", "pcm.wav", "vorbis.ogg",
                                           "opus.ogg", "eight-channels.mkv"));

TEST_F(Conversion, JoinsEqualPartsByCopyingEachWhereTheOneBeforeEnds) {
    const auto part = probe(recording("h264-aac.mkv"));
    const double length = std::max(part[0].end, part[1].end);
    ASSERT_NO_FATAL_FAILURE(join({"h264-aac.mkv", "h264-aac.mkv", "h264-aac.mkv"}));
    for (std::size_t i = 0; i < made.size(); ++i) {
        std::vector<std::uint32_t> packets;
        for (const double begin : {0.0, length, 2 * length}) {
            EXPECT_NEAR(made[i].times.at(packets.size()), begin, 0.025);
            packets.insert(packets.end(), part[i].packets.begin(), part[i].packets.end());
        }
        EXPECT_EQ(made[i].packets, packets);
        EXPECT_EQ(made[i].damaged, 0U);
    }
    EXPECT_EQ(video(made).decoded, 3 * video(part).decoded);
}

TEST_F(Conversion, JoinsDifferingPartsByTranscodingToTheLargestPicture) {
    ASSERT_NO_FATAL_FAILURE(join({"h264-aac.mkv", "other-parameters.mkv", "vp9-opus.webm"}));
    EXPECT_EQ(video(made).width, 200);
    EXPECT_EQ(video(made).height, 100);
    EXPECT_EQ(video(made).decoded, 30U + 25U + 30U);
    EXPECT_NEAR(video(made).end, 5, 0.15);
    EXPECT_NEAR(sound(made).end, 5, 0.15);
    EXPECT_NEAR(secondsOf(sound(made)), 5, 0.15);
}

TEST_F(Conversion, KeepsTracksOfLaterPartsAndFillsGapsButLeavesOutWhatIsEmptyOrText) {
    ASSERT_NO_FATAL_FAILURE(join({"pcm.wav", "h264-aac.mkv"}));
    EXPECT_NEAR(video(made).times.at(0), 2, 0.1);
    EXPECT_NEAR(sound(made).end, 4, 0.1);
    ASSERT_NO_FATAL_FAILURE(join({"muted.mkv", "h264-aac.mkv"}));
    EXPECT_NEAR(sound(made).times.at(0), 2, 0.1);
    ASSERT_NO_FATAL_FAILURE(join({"muted.mkv"}, 1));
    ASSERT_NO_FATAL_FAILURE(join({"gap.mkv"}, 1));
    EXPECT_NEAR(secondsOf(sound(made)), 3, 0.1) << "filled with silence";
    ASSERT_NO_FATAL_FAILURE(join({"subtitles.mkv"}));
    EXPECT_EQ(trace.count(1, "is left out: subtitle"), 1);
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
