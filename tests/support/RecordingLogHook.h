#pragma once

#include "logging/LogCall.h"

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarn::testing {

/// Takes the place of the root logger for the life of the object and keeps every record from Debug
/// up, at once and on the logging thread. For floors below the root logger, and for tests that want
/// no worker. One at a time; what was installed before comes back. `onError` may be noteErrorLine
/// (ErrorWatch.h).
class RecordingLogHook {
public:
    struct Record {
        RootLoggerLevel::Level level;
        std::string message;
        int line;
        std::string function;
    };

    explicit RecordingLogHook(void (*onError)(std::string_view message) = nullptr) {
        setLogHook([store = mStore, onError](std::string_view message, RootLoggerLevel::Level level,
                                             int line, std::string_view,
                                             std::string_view function) {
            if (level == RootLoggerLevel::Error && onError != nullptr) {
                onError(message);
            }
            const std::lock_guard lock(store->mutex);
            store->records.push_back({level, std::string(message), line, std::string(function)});
        });
        setLevelGate(
            [](RootLoggerLevel::Level level) noexcept { return level >= RootLoggerLevel::Debug; });
    }
    ~RecordingLogHook() {
        setLevelGate(mPreviousGate);
        setLogHook(mPreviousHook);
    }
    RecordingLogHook(const RecordingLogHook&) = delete;
    RecordingLogHook& operator=(const RecordingLogHook&) = delete;

    std::vector<Record> records() const {
        const std::lock_guard lock(mStore->mutex);
        return mStore->records;
    }
    /// "<Level> message" of each record.
    std::vector<std::string> lines() const {
        std::vector<std::string> texts;
        for (const Record& record : records()) {
            texts.push_back("<" + std::string(levelText(record.level)) + "> " + record.message);
        }
        return texts;
    }
    void clear() const {
        const std::lock_guard lock(mStore->mutex);
        mStore->records.clear();
    }

private:
    /// Shared with the hook, which a late thread may still be in.
    struct Store {
        std::mutex mutex;
        std::vector<Record> records;
    };
    std::shared_ptr<Store> mStore = std::make_shared<Store>();
    LogHook mPreviousHook = logHook();
    LevelGate mPreviousGate = levelGate();
};

} // namespace tarn::testing
