#include "engine/EngineUnderTest.h"

#include "platform/Text.h"

#include <filesystem>

namespace zelcore::testing {

using namespace tarn;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// The build's path as the system that runs the tests has it: a Linux one means another under Wine.
std::string absolute(const std::string& path) {
    return platform::toUtf8(
        std::filesystem::absolute(platform::toWide(path)).make_preferred().wstring());
}

} // namespace

std::string recording(const std::string& name) {
    return absolute(RECORDINGS_FOLDER "/" + name);
}

void EngineTest::load() {
    const auto find = [](platform::LibraryHandle library, const char* name, auto& function) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
            platform::findSymbol(library, name));
        ASSERT_NE(function, nullptr) << name << ": " << platform::lastError();
    };
    for (const char* name : {"mediaconverter", "zelclient"}) {
        const std::string path = absolute(RUNTIME_FOLDER "/" + platform::libraryFileName(name));
        mLibraries.push_back(platform::loadWithAlteredSearchPath(platform::toWide(path)));
    }
    find(mLibraries[0], "CreateMediaConverter", createConverter);
    find(mLibraries[0], "ZelStopConversions", stopConversions);
    find(mLibraries[0], "ZelConversionEnding", conversionEnding);
    find(mLibraries[1], "ZelSetTraceSink", setTraceSink);
    find(mLibraries[1], "ZelSetTraceMaxLevel", setTraceMaxLevel);
    setTraceSink(&trace);
    setTraceMaxLevel(5);
}

void EngineTest::convert(const std::vector<std::string>& sources, const std::string& to) {
    RecordingSink sink;
    ASSERT_EQ(start(sink, sources, to), zel::kZelSuccess);
    ASSERT_NO_FATAL_FAILURE(awaitEnd(sink));
    EXPECT_THAT(sink.errors, IsEmpty());
    EXPECT_EQ(conversionEnding(nullptr, 0), zel::kZelSuccess);
    ASSERT_GE(sink.progress.size(), 2U);
    EXPECT_TRUE(std::ranges::is_sorted(sink.progress)) << ::testing::PrintToString(sink.progress);
    EXPECT_EQ(sink.progress.front(), 0.0F);
    EXPECT_LT(sink.progress[sink.progress.size() - 2], 100.0F);
    EXPECT_THAT(trace.lines, ::testing::Each(::testing::Key(::testing::Gt(0U))));
    EXPECT_EQ(temporaries(), 0U);
}

void EngineTest::expectRefusal(std::int32_t code, const std::vector<std::string>& sources,
                               const std::string& to) {
    SCOPED_TRACE(sources.back() + " to " + to);
    const bool existed = platform::fileDetails(to).has_value();
    trace.lines.clear();
    RecordingSink sink;
    ASSERT_EQ(start(sink, sources, to), zel::kZelSuccess);
    ASSERT_NO_FATAL_FAILURE(awaitEnd(sink));
    EXPECT_THAT(sink.errors, ElementsAre(code));
    EXPECT_EQ(conversionEnding(nullptr, 0), code);
    EXPECT_EQ(trace.count(0), 1);
    EXPECT_EQ(trace.count(0, "Error " + std::to_string(code) + ": "), 1);
    EXPECT_EQ(platform::fileDetails(to).has_value(), existed);
    EXPECT_EQ(temporaries(), 0U);
}

} // namespace zelcore::testing
