#pragma once

#include "logging/RootLogger.h"
#include "recordconverter/IMediaConverterCallback.h"
#include "support/ErrorWatch.h"
#include "support/FakeLibraries.h"
#include "support/FatalLogSink.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

namespace recordconverter {

/// Records what a session tells its observers, and how many of the watched files exist then.
class RecordingObserver : public IMediaConverterCallback {
public:
    explicit RecordingObserver(std::vector<std::string> watched = {})
        : mWatched(std::move(watched)) {}

    void onConvertStarted(const std::string& destination) override {
        add("started " + destination);
    }
    void onConvertProgress(float percent, const std::string& destination) override {
        std::ostringstream text;
        text << "progress " << percent << " " << destination << " files "
             << std::ranges::count_if(
                    mWatched, [](const auto& path) { return tarn::FileUtils().exists(path); });
        add(text.str());
    }
    void onConvertError(std::int32_t code, const std::string& destination) override {
        add("error " + std::to_string(code) + " " + destination);
    }

    std::vector<std::string> heard() const {
        const std::lock_guard lock(mMutex);
        return mHeard;
    }

private:
    void add(const std::string& event) {
        const std::lock_guard lock(mMutex);
        mHeard.push_back(event);
    }

    std::vector<std::string> mWatched;
    mutable std::mutex mMutex;
    std::vector<std::string> mHeard;
};

/// What the process logs, seen by a sink at the end of the real road through the root logger. Error
/// lines that nobody expects fail the test.
class ProcessLog {
public:
    /// Starts empty.
    ProcessLog() {
        // The sink first: it is registered by the worker, which the flush waits for.
        tarn::testing::FatalLogSink& registered = sink();
        tarn::RootLogger::getInstance().flush();
        registered.take();
    }

    /// All records so far, in order.
    std::vector<tarn::LogComponents> records() const {
        tarn::RootLogger::getInstance().flush();
        for (auto& [line, components] : sink().take()) {
            mRecords.push_back(std::move(components));
        }
        return mRecords;
    }
    /// "<Level> message" of each.
    std::vector<std::string> lines() const {
        std::vector<std::string> texts;
        for (const tarn::LogComponents& record : records()) {
            texts.push_back("<" + record.level + "> " + record.message);
        }
        return texts;
    }
    /// How many records carry this message.
    int count(const std::string& message) const {
        const auto all = records();
        return static_cast<int>(std::ranges::count(all, message, &tarn::LogComponents::message));
    }
    /// True when an Error line begins so; all such lines are then expected.
    bool hasError(const std::string& beginning) const {
        tarn::testing::expectErrorLine(beginning);
        return std::ranges::any_of(records(), [&](const auto& record) {
            return record.level == "Error" && record.message.starts_with(beginning);
        });
    }

private:
    static tarn::testing::FatalLogSink& sink() {
        // The root logger keeps its sinks for ever, and its worker runs while the process exits.
        static const auto& registered = *new std::shared_ptr<tarn::testing::FatalLogSink>([] {
            auto created = std::make_shared<tarn::testing::FatalLogSink>();
            tarn::RootLogger::getInstance().registerLogger(created);
            tarn::testing::beforeErrorCheck([] { tarn::RootLogger::getInstance().flush(); });
            return created;
        }());
        return *registered;
    }

    mutable std::vector<tarn::LogComponents> mRecords;
};

/// A folder with sources whose first is the fake engine's script, and the log of the test.
class EngineFixture : public ::testing::Test {
protected:
    std::string source(const std::string& name, const std::string& script = "") {
        return mFolder.write(name, script);
    }
    static bool exists(const std::string& path) { return tarn::FileUtils().exists(path); }

    tarn::testing::TemporaryFolder mFolder;
    ProcessLog mLog;
};

} // namespace recordconverter
