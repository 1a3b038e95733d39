#pragma once

#include "platform/Files.h"
#include "platform/Library.h"
#include "support/TemporaryFolder.h"
#include "zel/EngineContract.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zelcore::testing {

std::string recording(const std::string& name);

/// What a conversion reported, in order. Read it while the engine is silent.
struct RecordingSink final : zel::IZelMediaConverterSink {
    void OnProgress(float percent) override {
        if (onProgress) {
            onProgress(percent);
        }
        const std::lock_guard lock(mMutex);
        progress.push_back(percent);
        mChanged.notify_all();
    }
    void OnError(std::int32_t code) override {
        const std::lock_guard lock(mMutex);
        errors.push_back(code);
        mChanged.notify_all();
    }
    /// Waits for an error or so much progress; false when neither has come in a minute.
    bool waitFor(float percent = 100) {
        std::unique_lock lock(mMutex);
        return mChanged.wait_for(lock, std::chrono::minutes(1), [&] {
            return !errors.empty() || (!progress.empty() && progress.back() >= percent);
        });
    }

    std::function<void(float)> onProgress; ///< runs on the engine's thread; set before the start
    std::vector<float> progress;
    std::vector<std::int32_t> errors;

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
};

struct RecordingTraceSink final : zel::IZelTraceSink {
    std::int32_t OnTrace(std::uint32_t level, const char* text) override {
        if (onTrace) {
            onTrace(text);
        }
        const std::lock_guard lock(mMutex);
        lines.emplace_back(level, text);
        return 0;
    }
    /// How many lines of a level hold a text.
    std::ptrdiff_t count(std::uint32_t level, const std::string& part = "") const {
        return std::ranges::count_if(lines, [&](const auto& line) {
            return line.first == level && line.second.contains(part);
        });
    }

    std::function<void(const std::string&)> onTrace; ///< as RecordingSink::onProgress
    std::vector<std::pair<std::uint32_t, std::string>> lines;

private:
    std::mutex mMutex;
};

/// The engine's two libraries, loaded as the program loads them, and a folder for destinations.
class EngineTest : public ::testing::Test {
protected:
    EngineTest() { load(); }
    ~EngineTest() override { unload(); }
    void load();
    void unload() {
        for (tarn::platform::LibraryHandle library : std::exchange(mLibraries, {})) {
            EXPECT_TRUE(tarn::platform::unload(library));
        }
    }

    zel::IZelMediaConverter& create(zel::IZelMediaConverterSink& sink) const {
        zel::IZelMediaConverter* converter = nullptr;
        EXPECT_EQ(createConverter(&converter, &sink), zel::kZelSuccess);
        return *converter;
    }
    std::int32_t start(RecordingSink& sink, const std::vector<std::string>& sources,
                       const std::string& to) const {
        std::vector<const char*> paths;
        std::ranges::transform(sources, std::back_inserter(paths), &std::string::c_str);
        return paths.size() == 1
                   ? create(sink).StartSingle(paths[0], to.c_str(), 3, 4)
                   : create(sink).StartMultiple(paths.data(), paths.size(), to.c_str(), 3, 4);
    }
    /// Waits for the end, and until the engine's thread is gone and has said all that it will say.
    void awaitEnd(RecordingSink& sink) const {
        ASSERT_TRUE(sink.waitFor());
        ASSERT_EQ(stopConversions(60'000), 0);
    }
    /// Converts and expects a success: one 100 after rising progress, no error line, no temporary.
    void convert(const std::vector<std::string>& sources, const std::string& to);
    /// Converts and expects exactly one error of this number, a trace line that names it, and
    /// neither a new destination nor a temporary.
    void expectRefusal(std::int32_t code, const std::vector<std::string>& sources,
                       const std::string& to);
    std::size_t temporaries() const {
        return tarn::platform::listFolder(folder.path(), "*.part")->size();
    }

    tarn::testing::TemporaryFolder folder;
    const std::string destination = folder / "out.mp4";
    RecordingTraceSink trace;
    zel::CreateMediaConverterFunction createConverter = nullptr;
    zel::StopConversionsFunction stopConversions = nullptr;
    zel::ConversionEndingFunction conversionEnding = nullptr;
    zel::SetTraceSinkFunction setTraceSink = nullptr;
    zel::SetTraceMaxLevelFunction setTraceMaxLevel = nullptr;

private:
    std::vector<tarn::platform::LibraryHandle> mLibraries;
};

} // namespace zelcore::testing
