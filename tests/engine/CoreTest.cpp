#include "engine/EngineUnderTest.h"
#include "engine/core/Verifier.h"

// Faults that no conversion can bring about from outside.
namespace zelcore::testing {

using tarn::testing::readFile;
using tarn::testing::TemporaryFolder;
using Tracks = std::vector<WrittenTrack>;

TEST(Verification, PassesTheWholeFileThatWasWrittenAndNothingElse) {
    const TemporaryFolder folder;
    const std::string whole = readFile(recording("h264-aac.mp4"));
    const Tracks written = {{AVMEDIA_TYPE_VIDEO, AV_CODEC_ID_H264, 160, 120, 0, 30, 2 * kTicks.den},
                            {AVMEDIA_TYPE_AUDIO, AV_CODEC_ID_AAC, 0, 0, 48000, 95, 2 * kTicks.den}};
    const auto isPassed = [&](const std::string& content, const Tracks& tracks) {
        try {
            verify(folder.write("file.mp4", content), content.size(), tracks, StopFlag());
            return true;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ErrorCode::VerificationFailed);
            return false;
        }
    };
    EXPECT_TRUE(isPassed(whole, written));
    void (*const lies[])(Tracks&) = {
        [](Tracks& tracks) { tracks.pop_back(); },
        [](Tracks& tracks) { tracks.push_back(tracks.back()); },
        [](Tracks& tracks) { tracks[0].codec = AV_CODEC_ID_HEVC; },
        [](Tracks& tracks) { tracks[0].height = 118; },
        [](Tracks& tracks) { tracks[1].packets++; },
        [](Tracks& tracks) { tracks[1].duration -= kTicks.den / 5; },
    };
    for (const auto& lie : lies) {
        Tracks tracks = written;
        lie(tracks);
        EXPECT_FALSE(isPassed(whole, tracks));
    }
    const auto index = whole.find("moov") - 4;
    for (const std::string& spoilt :
         {whole.substr(0, whole.size() / 2), std::string(whole.size(), '\0'),
          // The index in front, and a piece of what it speaks of missing.
          whole.substr(0, 32) + whole.substr(index) + whole.substr(32, 20'000)}) {
        EXPECT_FALSE(isPassed(spoilt, written));
    }
    EXPECT_THROW(verify(folder / "file.mp4", whole.size(), written, StopFlag()), Failure);
}

} // namespace zelcore::testing
