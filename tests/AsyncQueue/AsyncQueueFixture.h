#pragma once

#include "AsyncQueue/AsyncQueue.h"
#include "support/ErrorWatch.h"
#include "support/RecordingLogHook.h"
#include "support/Signal.h"

#include <gmock/gmock.h>

#include <future>
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
    /// Posts a task that runs `work`; the future is ready when it has ended.
    template <typename Work>
    std::future<void> run(const std::string& name, Work work) {
        std::packaged_task<void()> task(std::move(work));
        auto future = task.get_future();
        mQueue->post(name, TaskFunction(std::move(task)), 0, 0);
        return future;
    }
    void hold() {
        std::promise<void> isHolding;
        mQueue->post("hold", TaskFunction([this, &isHolding] {
                         isHolding.set_value();
                         mMayGoOn.wait();
                     }),
                     0, 0);
        isHolding.get_future().wait();
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

/// Says what it is told to when it is destroyed: a task that was dropped does that, too.
template <typename Action>
class OnDestruction {
public:
    explicit OnDestruction(Action action) : mAction(std::make_unique<Action>(std::move(action))) {}
    OnDestruction(OnDestruction&&) noexcept = default;
    OnDestruction& operator=(OnDestruction&&) = delete;
    OnDestruction(const OnDestruction&) = delete;
    OnDestruction& operator=(const OnDestruction&) = delete;
    ~OnDestruction() {
        if (mAction != nullptr) {
            (*mAction)();
        }
    }
    void operator()() const { ADD_FAILURE() << "a dropped task ran"; }

private:
    std::unique_ptr<Action> mAction;
};

} // namespace tarn
