#include "engine/EngineUnderTest.h"
#include "engine/MediaProbe.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "support/Signal.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace zelcore::testing {

using namespace tarn;

class Lifetime : public EngineTest {
protected:
    /// A conversion of some seconds, caught in the act.
    void startLong(RecordingSink& sink) {
        ASSERT_EQ(start(*engine.create(sink), {recording("long.webm"), recording("long.webm")},
                        destination()),
                  0);
        ASSERT_TRUE(sink.waitForProgress(1));
    }
    void waitUntilNoTemporaryIsLeft() const {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!temporaries(folder.path()).empty()) {
            ASSERT_LT(std::chrono::steady_clock::now(), limit);
            std::this_thread::yield();
        }
    }
};

TEST_F(Lifetime, AStopEndsAConversionWithinASecondAndLeavesNothing) {
    RecordingSink sink;
    ASSERT_NO_FATAL_FAILURE(startLong(sink));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.stopConversions(10'000), 0);
    // Within a second on a machine of its own; the rest is for other work on a shared one.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
    const std::size_t calls = sink.calls();
    EXPECT_THAT(sink.errors(), ::testing::IsEmpty());
    EXPECT_LT(sink.progress().back(), 100.0F);
    EXPECT_THAT(platform::listFolder(folder.path())->size(), 0U);
    EXPECT_EQ(engine.stopConversions(0), 0);
    EXPECT_EQ(sink.calls(), calls);
}

TEST_F(Lifetime, AStopFromWithinACallDoesNotWaitForItself) {
    RecordingSink sink;
    std::atomic<std::int32_t> result{-1};
    sink.onProgress = [&](float) { result = engine.stopConversions(10'000); };
    ASSERT_EQ(start(*engine.create(sink), {recording("long.webm")}, destination()), 0);
    ASSERT_TRUE(sink.waitForProgress(-1));
    EXPECT_EQ(result, 0);
    EXPECT_EQ(engine.stopConversions(10'000), 0);
    EXPECT_EQ(sink.calls(), 1U);
}

TEST_F(Lifetime, AnUnloadDuringAConversionSilencesItAndLeavesNothing) {
    auto sink = std::make_unique<RecordingSink>();
    ASSERT_NO_FATAL_FAILURE(startLong(*sink));
    engine.unloadConverter();
    EXPECT_LT(sink->progress().back(), 100.0F);
    sink.reset(); // a later call would be caught by the sanitizers, or crash
    waitUntilNoTemporaryIsLeft();
    EXPECT_FALSE(platform::fileDetails(destination()));
}

TEST_F(Lifetime, AnEngineThatWasUnloadedCanBeLoadedAgain) {
    engine.unloadConverter();
    engine.unloadClient();
    LoadedEngine again;
    RecordingSink sink;
    ASSERT_EQ(start(*again.create(sink), {recording("h264-aac.mkv")}, destination()), 0);
    ASSERT_TRUE(sink.waitForEnd());
    EXPECT_THAT(probe(destination()), ::testing::SizeIs(2));
    engine.setTraceSink = nullptr;
}

TEST_F(Lifetime, ConversionsSideBySideDoNotMix) {
    RecordingSink sinks[3];
    const std::string failing = folder / "missing";
    ASSERT_EQ(start(*engine.create(sinks[0]), {recording("vp9-opus.webm")}, folder / "0.mp4"), 0);
    ASSERT_EQ(start(*engine.create(sinks[1]), {failing}, folder / "1.mp4"), 0);
    ASSERT_EQ(start(*engine.create(sinks[2]), {recording("h264-aac.mkv")}, folder / "0.mp4"), 0);
    for (RecordingSink& sink : sinks) {
        ASSERT_TRUE(sink.waitForEnd());
    }
    EXPECT_THAT(sinks[0].errors(), ::testing::IsEmpty());
    EXPECT_THAT(sinks[1].errors(), ::testing::ElementsAre(20001));
    EXPECT_THAT(sinks[2].errors(), ::testing::IsEmpty());
    EXPECT_THAT(probe(folder / "0.mp4"), ::testing::SizeIs(2));
}

// Tables written by hand, as another compiler would lay them out.
namespace ctable {

struct Sink;
struct SinkTable {
    void* (*destructor)(Sink*, unsigned);
    void (*onProgress)(Sink*, float);
    void (*onError)(Sink*, std::int32_t);
};
struct Sink {
    const SinkTable* table;
    std::atomic<int> faults{0};
    tarn::testing::Signal isComplete{};
};
struct ConverterTable {
    void (*reserved[6])(void*);
    std::int32_t (*startSingle)(void*, const char*, const char*, std::uint32_t, std::uint32_t);
    std::int32_t (*startMultiple)(void*, const char* const*, std::uint64_t, const char*,
                                  std::uint32_t, std::uint32_t);
};
struct TraceSink;
struct TraceTable {
    std::int32_t (*onTrace)(TraceSink*, std::uint32_t, const char*);
    void* (*destructor)(TraceSink*, unsigned);
};
struct TraceSink {
    const TraceTable* table;
    std::atomic<int> lines{0};
    std::atomic<int> faults{0};
};

constexpr SinkTable sinkTable = {
    [](Sink* self, unsigned) -> void* { return ++self->faults, nullptr; },
    [](Sink* self, float percent) { percent >= 100.0F ? self->isComplete.set() : void(); },
    [](Sink* self, std::int32_t) { ++self->faults; }};
constexpr TraceTable traceTable = {
    [](TraceSink* self, std::uint32_t, const char*) -> std::int32_t { return ++self->lines, 0; },
    [](TraceSink* self, unsigned) -> void* { return ++self->faults, nullptr; }};

} // namespace ctable

TEST_F(Lifetime, TheTablesAreThoseOfTheContractWhicheverCompilerBuiltThem) {
    ctable::TraceSink traces{&ctable::traceTable};
    engine.setTraceSink(reinterpret_cast<zel::IZelTraceSink*>(&traces));
    const std::string source = recording("h264-aac.mkv");
    const char* const sources[] = {source.c_str(), source.c_str()};
    for (const std::uint64_t count : {1U, 2U}) {
        ctable::Sink sink{&ctable::sinkTable};
        zel::IZelMediaConverter& made =
            *engine.create(reinterpret_cast<zel::IZelMediaConverterSink&>(sink));
        const auto& table = **reinterpret_cast<const ctable::ConverterTable**>(&made);
        ASSERT_EQ(count == 1
                      ? table.startSingle(&made, sources[0], destination().c_str(), 3, 4)
                      : table.startMultiple(&made, sources, count, destination().c_str(), 3, 4),
                  0);
        sink.isComplete.wait();
        EXPECT_EQ(engine.stopConversions(60'000), 0);
        EXPECT_EQ(sink.faults, 0);
        EXPECT_EQ(probe(destination())[0].packets.size(), count * 30);
    }
    engine.setTraceSink(nullptr);
    EXPECT_GT(traces.lines, 0);
    EXPECT_EQ(traces.faults, 0);
}

class Trace : public EngineTest {};

TEST_F(Trace, HonoursTheMaximumLevel) {
    for (const auto& [maximum, highest] : {std::pair{-1, 0U}, {0, 0U}, {2, 2U}, {5, 4U}}) {
        trace.clear();
        engine.setTraceMaxLevel(maximum);
        ASSERT_NO_FATAL_FAILURE(convert({recording("vp9-opus.webm")}, destination()));
        EXPECT_EQ(trace.lines().empty(), maximum < 2);
        for (const auto& [level, text] : trace.lines()) {
            EXPECT_LE(level, highest) << text;
        }
        EXPECT_EQ(trace.count(highest) > 0, maximum >= 2);
    }
}

TEST_F(Trace, ComesToASinkNoMoreOnceItIsDetachedUnderFire) {
    RecordingSink sink;
    zel::IZelMediaConverter& converter = *engine.create(sink);
    ASSERT_EQ(start(converter, {recording("long.webm")}, destination()), 0);
    for (int i = 0; i < 300 && sink.progress().empty(); ++i) {
        std::this_thread::yield();
    }
    for (int i = 0; i < 200; ++i) {
        auto another = std::make_unique<RecordingTraceSink>();
        engine.setTraceSink(another.get());
        engine.setTraceSink(nullptr);
        another.reset(); // a call that was still under way would be caught by the sanitizers
    }
    EXPECT_EQ(engine.stopConversions(60'000), 0);
}

} // namespace zelcore::testing
