#include "engine/EngineUnderTest.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace zelcore::testing {

using ::testing::IsEmpty;
using ::testing::SizeIs;
using Clock = std::chrono::steady_clock;

class Lifetime : public EngineTest {
protected:
    /// A conversion of some seconds, caught in the act.
    void startLong(RecordingSink& sink) const {
        const std::string part = recording("long.webm");
        ASSERT_EQ(start(sink, {part, part}, destination), 0);
        ASSERT_TRUE(sink.waitFor(1));
    }
};

TEST_F(Lifetime, AStopEndsAConversionWithinASecondAndLeavesNothing) {
    RecordingSink sink;
    ASSERT_NO_FATAL_FAILURE(startLong(sink));
    const auto begin = Clock::now();
    EXPECT_EQ(stopConversions(10'000), 0);
    // Within a second on a machine of its own; the rest is for other work on a shared one.
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(3));
    EXPECT_THAT(sink.errors, IsEmpty());
    EXPECT_LT(sink.progress.back(), 100.0F);
    EXPECT_EQ(tarn::platform::listFolder(folder.path())->size(), 0U);
    EXPECT_EQ(conversionEnding(nullptr, 0), zel::kZelNotEnded);
    EXPECT_EQ(stopConversions(0), 0);
}

TEST_F(Lifetime, AStopFromWithinACallDoesNotWaitForItself) {
    RecordingSink sink;
    std::atomic<std::int32_t> result{-1};
    sink.onProgress = [&](float) { result = stopConversions(10'000); };
    ASSERT_EQ(start(sink, {recording("long.webm")}, destination), 0);
    ASSERT_TRUE(sink.waitFor(0));
    EXPECT_EQ(result, 0);
    EXPECT_EQ(stopConversions(10'000), 0);
    EXPECT_THAT(sink.progress, SizeIs(1));
    EXPECT_THAT(sink.errors, IsEmpty());
}

TEST_F(Lifetime, AnUnloadDuringAConversionSilencesItLeavesNothingAndALoadFollowsIt) {
    auto sink = std::make_unique<RecordingSink>();
    ASSERT_NO_FATAL_FAILURE(startLong(*sink));
    unload();
    EXPECT_LT(sink->progress.back(), 100.0F);
    sink.reset(); // a later call would be caught by the sanitizers, or crash
    const auto limit = Clock::now() + std::chrono::seconds(20);
    while (temporaries() > 0) {
        ASSERT_LT(Clock::now(), limit);
        std::this_thread::yield();
    }
    EXPECT_FALSE(tarn::platform::fileDetails(destination));
    load();
    convert({recording("h264-aac.mkv")}, destination);
}

TEST_F(Lifetime, ConversionsSideBySideDoNotMix) {
    RecordingSink sinks[3];
    ASSERT_EQ(start(sinks[0], {recording("vp9-opus.webm")}, destination), 0);
    ASSERT_EQ(start(sinks[1], {folder / "missing"}, folder / "1.mp4"), 0);
    ASSERT_EQ(start(sinks[2], {recording("h264-aac.mkv")}, folder / "2.mp4"), 0);
    for (RecordingSink& sink : sinks) {
        ASSERT_TRUE(sink.waitFor());
    }
    EXPECT_THAT(sinks[0].errors, IsEmpty());
    EXPECT_THAT(sinks[1].errors, ::testing::ElementsAre(20001));
    EXPECT_THAT(sinks[2].errors, IsEmpty());
    EXPECT_TRUE(tarn::platform::fileDetails(destination));
    EXPECT_TRUE(tarn::platform::fileDetails(folder / "2.mp4"));
}

TEST_F(Lifetime, TheTraceComesToASinkNoMoreOnceItIsDetachedUnderFire) {
    RecordingSink sink;
    ASSERT_NO_FATAL_FAILURE(startLong(sink));
    for (int i = 0; i < 200; ++i) {
        auto another = std::make_unique<RecordingTraceSink>();
        setTraceSink(another.get());
        setTraceSink(nullptr);
        another.reset(); // a call that was still under way would be caught by the sanitizers
    }
    EXPECT_EQ(stopConversions(60'000), 0);
}

} // namespace zelcore::testing
