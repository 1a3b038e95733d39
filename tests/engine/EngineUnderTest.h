#pragma once

#include "platform/Library.h"
#include "support/TemporaryFolder.h"
#include "zel/EngineContract.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zelcore::testing {

/// What a conversion reported, in order.
class RecordingSink final : public zel::IZelMediaConverterSink {
public:
    void OnProgress(float percent) override;
    void OnError(std::int32_t code) override;

    /// False when neither 100 nor an error has come in a minute.
    bool waitForEnd();
    /// False when no progress above `percent` has come in a minute.
    bool waitForProgress(float percent);
    std::vector<float> progress() const;
    std::vector<std::int32_t> errors() const;
    std::size_t calls() const;

    std::function<void(float)> onProgress; ///< runs on the engine's thread; set before the start

private:
    bool waitFor(const std::function<bool()>& reached);

    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<float> mProgress;
    std::vector<std::int32_t> mErrors;
};

class RecordingTraceSink final : public zel::IZelTraceSink {
public:
    std::int32_t OnTrace(std::uint32_t level, const char* text) override;
    std::vector<std::pair<std::uint32_t, std::string>> lines() const;
    /// How many lines of a level hold a text.
    std::size_t count(std::uint32_t level, const std::string& part = "") const;
    void clear();

private:
    mutable std::mutex mMutex;
    std::vector<std::pair<std::uint32_t, std::string>> mLines;
};

/// The engine's two libraries, loaded as the program loads them.
class LoadedEngine {
public:
    LoadedEngine();
    ~LoadedEngine();
    LoadedEngine(const LoadedEngine&) = delete;
    LoadedEngine& operator=(const LoadedEngine&) = delete;

    zel::IZelMediaConverter* create(zel::IZelMediaConverterSink& sink) const;
    void unloadConverter();
    void unloadClient();

    zel::CreateMediaConverterFunction createConverter = nullptr;
    zel::StopConversionsFunction stopConversions = nullptr;
    zel::SetTraceSinkFunction setTraceSink = nullptr;
    zel::SetTraceMaxLevelFunction setTraceMaxLevel = nullptr;

private:
    tarn::platform::LibraryHandle mConverter = nullptr;
    tarn::platform::LibraryHandle mClient = nullptr;
};

std::string recording(const std::string& name);

/// A loaded engine whose trace is kept, and a folder for destinations.
class EngineTest : public ::testing::Test {
protected:
    EngineTest();
    ~EngineTest() override;

    std::string destination(const std::string& name = "out.mp4") const { return folder / name; }
    static std::int32_t start(zel::IZelMediaConverter& converter,
                              const std::vector<std::string>& sources, const std::string& to);
    /// Converts and waits for the end. Expects a success: one 100 after rising progress, no error
    /// line, nothing but the destination in the folder.
    void convert(const std::vector<std::string>& sources, const std::string& to);
    /// Converts and waits for the end. Expects exactly one error of this number, a trace line that
    /// names it, and no destination or temporary.
    void expectRefusal(std::int32_t code, const std::vector<std::string>& sources,
                       const std::string& to);
    /// Names of temporaries in a folder.
    static std::vector<std::string> temporaries(const std::string& folderPath);

    tarn::testing::TemporaryFolder folder;
    RecordingTraceSink trace; // outlives the engine
    LoadedEngine engine;
};

} // namespace zelcore::testing
