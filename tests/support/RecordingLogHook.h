#pragma once

#include "logging/LogCall.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tarn::testing {

/// Takes the place of the root logger for the life of the object and keeps every record, at once
/// and on the logging thread. For floors below the root logger, and for tests that want no worker.
/// One at a time; what was installed before comes back.
///
///     RecordingLogHook log;
///     expectErrorLine("Can't load ");           // or the test fails, see ErrorWatch.h
///     ...
///     EXPECT_THAT(log.lines(), ElementsAre("<Error> Can't load it"));
class RecordingLogHook {
public:
    struct Record {
        RootLoggerLevel::Level level;
        std::string message;
        int line;
        std::string file;
        std::string function;
    };

    /// Every level of at least `lowest` is enabled.
    explicit RecordingLogHook(RootLoggerLevel::Level lowest = RootLoggerLevel::Debug);
    ~RecordingLogHook();
    RecordingLogHook(const RecordingLogHook&) = delete;
    RecordingLogHook& operator=(const RecordingLogHook&) = delete;

    std::vector<Record> records() const;
    /// "<Level> message" of each record.
    std::vector<std::string> lines() const;
    void clear();

private:
    struct Store;

    std::shared_ptr<Store> mStore;
    LogHook mPreviousHook;
    LevelGate mPreviousGate;
};

} // namespace tarn::testing
