#include "engine/EngineUnderTest.h"

#include "platform/Files.h"
#include "platform/Text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace zelcore::testing {

using namespace tarn;

void RecordingSink::OnProgress(float percent) {
    if (onProgress) {
        onProgress(percent);
    }
    const std::lock_guard lock(mMutex);
    mProgress.push_back(percent);
    mChanged.notify_all();
}

void RecordingSink::OnError(std::int32_t code) {
    const std::lock_guard lock(mMutex);
    mErrors.push_back(code);
    mChanged.notify_all();
}

bool RecordingSink::waitFor(const std::function<bool()>& reached) {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, std::chrono::minutes(1), reached);
}

bool RecordingSink::waitForEnd() {
    return waitFor(
        [this] { return !mErrors.empty() || (!mProgress.empty() && mProgress.back() >= 100.0F); });
}

bool RecordingSink::waitForProgress(float percent) {
    return waitFor([this, percent] { return !mProgress.empty() && mProgress.back() > percent; });
}

std::vector<float> RecordingSink::progress() const {
    const std::lock_guard lock(mMutex);
    return mProgress;
}

std::vector<std::int32_t> RecordingSink::errors() const {
    const std::lock_guard lock(mMutex);
    return mErrors;
}

std::size_t RecordingSink::calls() const {
    const std::lock_guard lock(mMutex);
    return mProgress.size() + mErrors.size();
}

std::int32_t RecordingTraceSink::OnTrace(std::uint32_t level, const char* text) {
    const std::lock_guard lock(mMutex);
    mLines.emplace_back(level, text);
    return 0;
}

std::vector<std::pair<std::uint32_t, std::string>> RecordingTraceSink::lines() const {
    const std::lock_guard lock(mMutex);
    return mLines;
}

std::size_t RecordingTraceSink::count(std::uint32_t level, const std::string& part) const {
    const std::lock_guard lock(mMutex);
    return static_cast<std::size_t>(std::ranges::count_if(mLines, [&](const auto& line) {
        return line.first == level && line.second.find(part) != std::string::npos;
    }));
}

void RecordingTraceSink::clear() {
    const std::lock_guard lock(mMutex);
    mLines.clear();
}

namespace {

/// The build's path as the system that runs the tests has it: a Linux one means another under Wine.
std::string absolute(const std::string& path) {
    return platform::toUtf8(
        std::filesystem::absolute(platform::toWide(path)).make_preferred().wstring());
}

platform::LibraryHandle load(const std::string& name) {
    const std::string path =
        absolute(std::string(RUNTIME_FOLDER) + '/' + platform::libraryFileName(name));
    platform::LibraryHandle library = platform::loadWithAlteredSearchPath(platform::toWide(path));
    EXPECT_NE(library, nullptr) << path << ": " << platform::lastError();
    return library;
}

template <class Function>
Function find(platform::LibraryHandle library, const char* name) {
    return reinterpret_cast<Function>(platform::findSymbol(library, name));
}

} // namespace

LoadedEngine::LoadedEngine() : mConverter(load("mediaconverter")), mClient(load("zelclient")) {
    createConverter = find<zel::CreateMediaConverterFunction>(mConverter, "CreateMediaConverter");
    stopConversions = find<zel::StopConversionsFunction>(mConverter, "ZelStopConversions");
    setTraceSink = find<zel::SetTraceSinkFunction>(mClient, "ZelSetTraceSink");
    setTraceMaxLevel = find<zel::SetTraceMaxLevelFunction>(mClient, "ZelSetTraceMaxLevel");
}

LoadedEngine::~LoadedEngine() {
    unloadConverter();
    unloadClient();
}

void LoadedEngine::unloadConverter() {
    if (mConverter != nullptr) {
        EXPECT_TRUE(platform::unload(std::exchange(mConverter, nullptr)));
    }
}

void LoadedEngine::unloadClient() {
    if (mClient != nullptr) {
        EXPECT_TRUE(platform::unload(std::exchange(mClient, nullptr)));
    }
}

zel::IZelMediaConverter* LoadedEngine::create(zel::IZelMediaConverterSink& sink) const {
    zel::IZelMediaConverter* converter = nullptr;
    EXPECT_EQ(createConverter(&converter, &sink), zel::kZelSuccess);
    EXPECT_NE(converter, nullptr);
    return converter;
}

std::string recording(const std::string& name) {
    return absolute(std::string(RECORDINGS_FOLDER) + '/' + name);
}

EngineTest::EngineTest() {
    engine.setTraceSink(&trace);
    engine.setTraceMaxLevel(5);
}

EngineTest::~EngineTest() {
    if (engine.setTraceSink != nullptr) {
        engine.setTraceSink(nullptr);
    }
}

std::int32_t EngineTest::start(zel::IZelMediaConverter& converter,
                               const std::vector<std::string>& sources, const std::string& to) {
    if (sources.size() == 1) {
        return converter.StartSingle(sources[0].c_str(), to.c_str(), 3, 4);
    }
    std::vector<const char*> paths;
    for (const std::string& source : sources) {
        paths.push_back(source.c_str());
    }
    return converter.StartMultiple(paths.data(), paths.size(), to.c_str(), 3, 4);
}

void EngineTest::convert(const std::vector<std::string>& sources, const std::string& to) {
    RecordingSink sink;
    ASSERT_EQ(start(*engine.create(sink), sources, to), zel::kZelSuccess);
    ASSERT_TRUE(sink.waitForEnd());
    engine.stopConversions(60'000); // the thread is gone: whatever it would still say has been said
    EXPECT_THAT(sink.errors(), ::testing::IsEmpty());
    const auto progress = sink.progress();
    EXPECT_TRUE(std::ranges::is_sorted(progress)) << ::testing::PrintToString(progress);
    EXPECT_EQ(progress.front(), 0.0F);
    EXPECT_EQ(std::ranges::count_if(progress, [](float each) { return each >= 100.0F; }), 1);
    for (const auto& [level, text] : trace.lines()) {
        EXPECT_NE(level, 0U) << text;
    }
    EXPECT_THAT(temporaries(folder.path()), ::testing::IsEmpty());
}

void EngineTest::expectRefusal(std::int32_t code, const std::vector<std::string>& sources,
                               const std::string& to) {
    SCOPED_TRACE(sources.empty() ? to : sources.front() + " to " + to);
    const auto before = platform::fileDetails(to);
    trace.clear();
    RecordingSink sink;
    ASSERT_EQ(start(*engine.create(sink), sources, to), zel::kZelSuccess);
    ASSERT_TRUE(sink.waitForEnd());
    engine.stopConversions(60'000);
    EXPECT_THAT(sink.errors(), ::testing::ElementsAre(code));
    EXPECT_EQ(trace.count(0), 1U);
    EXPECT_EQ(trace.count(0, "Error " + std::to_string(code) + ": "), 1U);
    const auto after = platform::fileDetails(to);
    ASSERT_EQ(before.has_value(), after.has_value());
    if (before) {
        EXPECT_EQ(before->size, after->size);
        EXPECT_EQ(before->modified, after->modified);
    }
    EXPECT_THAT(temporaries(folder.path()), ::testing::IsEmpty());
}

std::vector<std::string> EngineTest::temporaries(const std::string& folderPath) {
    std::vector<std::string> names;
    for (const auto& entry : platform::listFolder(folderPath, "*.part")
                                 .value_or(std::vector<platform::FolderEntry>())) {
        names.push_back(entry.name);
    }
    return names;
}

} // namespace zelcore::testing
