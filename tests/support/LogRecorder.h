#pragma once

#include "log/LogCall.h"
#include "logging/ILogger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarn::testing {

/// A sink that keeps what it is given, and fails the running test for an Error line that it did not
/// announce by expectErrorLine.
class LogRecorder : public ILogger {
public:
    using Line = std::pair<std::string, LogComponents>;

    void log(const std::string& line, const LogComponents& parts) override {
        mStore->add(line, parts);
    }
    void clearLogs() override { take(); }
    void close() override {}
    void flush() override {
        const std::lock_guard lock(mStore->mutex);
        ++mStore->flushCount;
    }

    std::vector<Line> records() const {
        const std::lock_guard lock(mStore->mutex);
        return mStore->lines;
    }
    std::vector<std::string> lines() const {
        std::vector<std::string> texts;
        for (const auto& [line, parts] : records()) {
            texts.push_back(line);
        }
        return texts;
    }
    std::vector<std::string> messages() const {
        std::vector<std::string> texts;
        for (const auto& [line, parts] : records()) {
            texts.push_back(parts.message);
        }
        return texts;
    }
    /// How often it was flushed since the last take().
    int flushCount() const {
        const std::lock_guard lock(mStore->mutex);
        return mStore->flushCount;
    }
    /// All that came, and forgets it.
    std::vector<Line> take() const {
        const std::lock_guard lock(mStore->mutex);
        mStore->flushCount = 0;
        return std::exchange(mStore->lines, {});
    }
    static std::vector<std::string>& expected() {
        static auto& beginnings = *new std::vector<std::string>;
        return beginnings;
    }

protected:
    struct Store {
        std::mutex mutex;
        std::vector<Line> lines;
        int flushCount = 0;

        void add(const std::string& line, const LogComponents& parts) {
            const std::lock_guard lock(mutex);
            if (parts.level == "Error" && std::ranges::none_of(expected(), [&](const auto& text) {
                    return parts.message.starts_with(text);
                })) {
                ADD_FAILURE() << "unexpected Error line: " << parts.message;
            }
            lines.emplace_back(line, parts);
        }
    };
    std::shared_ptr<Store> mStore = std::make_shared<Store>();
};

/// The same in the root logger's place while it lives: "<Level> message" of each record from Debug
/// up, at once and on the logging thread. One at a time.
class HookedLog : public LogRecorder {
public:
    HookedLog() {
        expected().clear();
        // A late thread may still be in the hook when this is gone.
        setLogHook([store = mStore](std::string_view message, RootLoggerLevel::Level level,
                                    int line, std::string_view, std::string_view function) {
            LogComponents parts;
            parts.level = levelText(level);
            parts.function = function;
            parts.message = message;
            parts.line = line;
            store->add("<" + parts.level + "> " + parts.message, parts);
        });
        setLevelGate(
            [](RootLoggerLevel::Level level) noexcept { return level >= RootLoggerLevel::Debug; });
    }
    ~HookedLog() override {
        setLevelGate(mPreviousGate);
        setLogHook(mPreviousHook);
    }
    HookedLog(const HookedLog&) = delete;
    HookedLog& operator=(const HookedLog&) = delete;

private:
    LogHook mPreviousHook = logHook();
    LevelGate mPreviousGate = levelGate();
};

/// Error lines of the running test that begin so are no failure. Call it before they are logged.
inline void expectErrorLine(const std::string& beginning) {
    LogRecorder::expected().push_back(beginning);
}

} // namespace tarn::testing
