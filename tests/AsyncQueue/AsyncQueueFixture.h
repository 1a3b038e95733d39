#pragma once

#include "AsyncQueue/AsyncQueue.h"
#include "support/ErrorWatch.h"
#include "support/RecordingLogHook.h"
#include "support/Signal.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

/// A queue named "Q" whose tasks note their names. `hold` keeps the worker busy until `release`.
class AsyncQueueFixture : public ::testing::Test {
protected:
    ~AsyncQueueFixture() override { release(); }

    void post(const std::string& name, std::uint32_t position = 0, std::uint32_t type = 0) {
        mQueue->post(name, TaskFunction([this, name] { note(name); }), position, type);
    }
    /// Runs `work` as a task and waits for its end.
    void run(const std::string& name, const std::function<void()>& work) {
        testing::Signal hasEnded;
        mQueue->post(name, TaskFunction([&] {
                         work();
                         hasEnded.set();
                     }),
                     0, 0);
        hasEnded.wait();
    }
    void hold() {
        testing::Signal isHolding;
        mQueue->post("hold", TaskFunction([this, &isHolding] {
                         isHolding.set();
                         mMayGoOn.wait();
                     }),
                     0, 0);
        isHolding.wait();
        mIsHeld = true;
    }
    void release() {
        if (std::exchange(mIsHeld, false)) {
            mMayGoOn.set();
        }
    }
    void note(const std::string& text) {
        const std::lock_guard lock(mMutex);
        mNotes.push_back(text);
    }
    std::vector<std::string> notes() {
        const std::lock_guard lock(mMutex);
        return mNotes;
    }
    /// "line <Level> message" of what was logged.
    std::vector<std::string> logged() const {
        std::vector<std::string> texts;
        for (const auto& record : mLog.records()) {
            texts.push_back(std::to_string(record.line) + " <" +
                            std::string(levelText(record.level)) + "> " + record.message);
        }
        return texts;
    }

    testing::RecordingLogHook mLog{testing::noteErrorLine};
    std::mutex mMutex;
    std::vector<std::string> mNotes;
    testing::Signal mMayGoOn;
    bool mIsHeld = false;
    std::shared_ptr<AsyncQueue> mQueue = std::make_shared<AsyncQueue>("Q", false);
};

} // namespace tarn
