#include "engine/EngineUnderTest.h"
#include "engine/core/DeclaredSize.h"
#include "engine/core/Progress.h"
#include "engine/core/SinkGate.h"
#include "engine/core/SourceFile.h"
#include "engine/core/Verifier.h"
#include "support/Signal.h"

#include <gmock/gmock.h>

#include <atomic>

// Pieces of the core whose faults no conversion can bring about from outside.
namespace zelcore::testing {

using tarn::testing::readFile;
using tarn::testing::TemporaryFolder;

class Verification : public ::testing::Test {
protected:
    std::vector<WrittenTrack> written() const {
        return {{AVMEDIA_TYPE_VIDEO, AV_CODEC_ID_H264, 160, 120, 0, 30, 0, 2 * kTicks.den},
                {AVMEDIA_TYPE_AUDIO, AV_CODEC_ID_AAC, 0, 0, 48000, 95, 0, 2 * kTicks.den}};
    }
    ErrorCode codeOf(const std::string& file, const std::vector<WrittenTrack>& tracks) {
        try {
            verify(file, readFile(file).size(), tracks, stop);
            return ErrorCode{};
        } catch (const Failure& failure) {
            return failure.code();
        }
    }
    TemporaryFolder folder;
    StopFlag stop;
};

TEST_F(Verification, PassesWhatWasWrittenAndNothingElse) {
    const std::string file = recording("h264-aac.mp4");
    EXPECT_EQ(codeOf(file, written()), ErrorCode{});
    const std::function<void(std::vector<WrittenTrack>&)> lies[] = {
        [](auto& tracks) { tracks.pop_back(); },
        [](auto& tracks) { tracks.push_back(tracks.back()); },
        [](auto& tracks) { std::swap(tracks[0], tracks[1]); },
        [](auto& tracks) { tracks[0].codec = AV_CODEC_ID_HEVC; },
        [](auto& tracks) { tracks[0].width = 162; },
        [](auto& tracks) { tracks[0].height = 118; },
        [](auto& tracks) { tracks[1].packets++; },
        [](auto& tracks) { tracks[0].end += kTicks.den / 5; },
        [](auto& tracks) { tracks[1].end -= kTicks.den / 5; }};
    for (const auto& lie : lies) {
        auto tracks = written();
        lie(tracks);
        EXPECT_EQ(codeOf(file, tracks), ErrorCode::VerificationFailed);
    }
    auto tracks = written();
    tracks.push_back({AVMEDIA_TYPE_AUDIO, AV_CODEC_ID_AAC, 0, 0, 48000, 0, kNoTime, kNoTime});
    EXPECT_EQ(codeOf(file, tracks), ErrorCode{}) << "a track without packets is in no file";
}

TEST_F(Verification, FindsAFileThatLostItsEndOrItsIndex) {
    const std::string whole = readFile(recording("h264-aac.mp4"));
    EXPECT_EQ(codeOf(folder.write("no-index.mp4", whole.substr(0, whole.size() / 2)), written()),
              ErrorCode::VerificationFailed);
    EXPECT_EQ(codeOf(folder.write("zeros.mp4", std::string(whole.size(), '\0')), written()),
              ErrorCode::VerificationFailed);
    // The index in front, and a piece of what it speaks of missing.
    const auto index = whole.find("moov") - 4;
    const std::string moved = whole.substr(0, 32) + whole.substr(index) + whole.substr(32, 20'000);
    EXPECT_EQ(codeOf(folder.write("moved.mp4", moved), written()), ErrorCode::VerificationFailed);
    EXPECT_THROW(verify(recording("h264-aac.mp4"), whole.size() + 1, written(), stop), Failure);
}

TEST(DeclaredSize, IsWhatTheContainerSaysAndNothingWhereItSaysNothing) {
    const TemporaryFolder folder;
    const StopFlag stop;
    const auto declared = [&](const std::string& content) {
        return declaredSize(SourceFile(folder.write("file", content), stop));
    };
    for (const char* name : {"h264-aac.mkv", "h264-aac.mp4", "pcm.wav", "vp9-opus.webm"}) {
        const std::string whole = readFile(recording(name));
        EXPECT_EQ(declared(whole), whole.size()) << name;
        EXPECT_EQ(declared(whole.substr(0, whole.size() - 1000)), whole.size()) << name;
    }
    for (const char* name : {"live.mkv", "h264-aac.ts", "h264-aac.flv", "vorbis.ogg"}) {
        EXPECT_EQ(declared(readFile(recording(name))), 0U) << name;
    }
    using namespace std::string_literals;
    const std::string boxes =
        "\0\0\0\x10"
        "ftypisom\0\0\0\0"s;
    EXPECT_EQ(declared(boxes + "\0\0\0\x01mdat\0\0\0\x01\0\0\0\0"s), 16 + (1ULL << 32U));
    EXPECT_EQ(declared(boxes + "\0\0\0\0mdat and so on"s), 16U + 18U) << "to the end";
    EXPECT_EQ(declared(boxes + "appended by something else"s), 16U);
    EXPECT_EQ(declared(boxes + "\0\0\0\x01mdat\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s), 16U);
    EXPECT_EQ(declared("RIFF\xFF\xFF\xFF\xFFWAVEfmt "s), 0U) << "written to a pipe";
    EXPECT_EQ(declared("\x1A\x45\xDF\xA3\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFE"s), 0U);
}

TEST(Progress, NeverFallsNorReaches100BeforeTheEnd) {
    std::vector<float> reports;
    Progress progress([&](float percent) { reports.push_back(percent); });
    for (const double share : {0.0, 0.5, 0.2, 0.5001, 0.9, -1.0, 7.0, 1.0}) {
        progress.update(share);
    }
    progress.complete();
    EXPECT_THAT(reports, ::testing::ElementsAre(0.0F, 49.5F, ::testing::FloatNear(89.1F, 0.01F),
                                                99.0F, 100.0F));
}

TEST(SinkGate, LetsNobodyLeaveTheSinkWhileACallIsUnderWay) {
    int sink = 0;
    SinkGate<int> gate(&sink);
    tarn::testing::Signal isInside;
    tarn::testing::Signal mayLeave;
    std::atomic<bool> hasLeft{false};
    std::thread caller([&] {
        gate.call([&](int&) {
            isInside.set();
            mayLeave.wait();
            hasLeft = true;
        });
    });
    isInside.wait();
    gate.drop(); // gives up in time, with the call still under way
    EXPECT_FALSE(hasLeft);
    EXPECT_FALSE(gate.call([](int&) {}));
    int another = 0;
    gate.set(&another);
    bool wasCalled = false;
    EXPECT_TRUE(gate.call([&](int& held) {
        wasCalled = &held == &another;
        gate.set(nullptr); // from within: its own call is not waited for
    }));
    EXPECT_TRUE(wasCalled);
    mayLeave.set();
    caller.join();
}

} // namespace zelcore::testing
