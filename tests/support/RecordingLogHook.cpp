#include "support/RecordingLogHook.h"

#include "support/ErrorWatch.h"

#include <atomic>
#include <utility>

namespace tarn::testing {
namespace {

std::atomic<RootLoggerLevel::Level> lowestLevel{RootLoggerLevel::Debug};

} // namespace

/// Shared with the hook, which a late thread may still be in.
struct RecordingLogHook::Store {
    mutable std::mutex mutex;
    std::vector<Record> records;
};

RecordingLogHook::RecordingLogHook(RootLoggerLevel::Level lowest)
    : mStore(std::make_shared<Store>()), mPreviousHook(logHook()), mPreviousGate(levelGate()) {
    lowestLevel = lowest;
    setLogHook([store = mStore](std::string message, RootLoggerLevel::Level level, int line,
                                std::string_view file, std::string_view function) {
        if (level == RootLoggerLevel::Error) {
            noteErrorLine(message);
        }
        const std::lock_guard lock(store->mutex);
        store->records.push_back(
            {level, std::move(message), line, std::string(file), std::string(function)});
    });
    setLevelGate([](RootLoggerLevel::Level level) noexcept { return level >= lowestLevel.load(); });
}

RecordingLogHook::~RecordingLogHook() {
    setLevelGate(mPreviousGate);
    setLogHook(mPreviousHook);
}

std::vector<RecordingLogHook::Record> RecordingLogHook::records() const {
    const std::lock_guard lock(mStore->mutex);
    return mStore->records;
}

std::vector<std::string> RecordingLogHook::lines() const {
    std::vector<std::string> texts;
    for (const Record& record : records()) {
        texts.push_back("<" + std::string(levelText(record.level)) + "> " + record.message);
    }
    return texts;
}

void RecordingLogHook::clear() {
    const std::lock_guard lock(mStore->mutex);
    mStore->records.clear();
}

} // namespace tarn::testing
