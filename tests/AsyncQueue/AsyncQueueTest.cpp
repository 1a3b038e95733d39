#include "AsyncQueue/AsyncQueue.h"
#include "platform/Identity.h"
#include "support/LogRecorder.h"
#include "support/Signal.h"
#include "threading/Assertion.h"
#include "threading/ScopedThreadNotifications.h"
#include "threading/ThreadUtilities.h"

#include <gmock/gmock.h>

#include <functional>
#include <random>
#include <stdexcept>
#include <thread>

namespace tarn {

namespace {

using ::testing::ElementsAre;
using testing::Signal;
using ThreadUtilities::getThreadDescription;

/// A queue named "Q" whose tasks note their names. `hold` keeps the worker busy until `release`.
class AsyncQueueTest : public ::testing::Test {
protected:
    ~AsyncQueueTest() override {
        if (mIsHeld) {
            release();
        }
    }
    void post(const std::string& name, std::uint32_t position = 0, std::uint32_t type = 0) {
        add(
            name, [this, name] { mNotes.push_back(name); }, position, type);
    }
    void add(const std::string& name, std::function<void()> work, std::uint32_t position = 0,
             std::uint32_t type = 0) {
        mQueue->post(name, TaskFunction(std::move(work)), position, type);
    }
    /// Runs it as a task and waits for its end.
    void run(
        const std::string& name, const std::function<void()>& work = [] {}) {
        Signal hasEnded;
        add(name, [&] {
            work();
            hasEnded.set();
        });
        hasEnded.wait();
    }
    void hold() {
        Signal isHolding;
        add("hold", [&] {
            isHolding.set();
            mMayGoOn.wait();
        });
        isHolding.wait();
        mIsHeld = true;
    }
    void release() {
        mIsHeld = false;
        mMayGoOn.set();
    }
    /// "line <Level> message" of what was logged.
    std::vector<std::string> logged() const {
        std::vector<std::string> texts;
        for (const auto& [line, parts] : mLog.records()) {
            texts.push_back(std::to_string(parts.line) + " " + line);
        }
        return texts;
    }

    testing::HookedLog mLog;
    std::vector<std::string> mNotes; ///< the worker's, until it has ended
    Signal mMayGoOn;
    bool mIsHeld = false;
    std::shared_ptr<AsyncQueue> mQueue = std::make_shared<AsyncQueue>("Q", false);
};

/// The queue and a plain list beside it. Each task, once it runs, waits for `next`.
class ModelledQueue {
public:
    explicit ModelledQueue(unsigned seed) : mRandom(seed) {} // NOLINT: the same in every run
    ~ModelledQueue() {
        if (mIsSuspended) {
            resume();
        }
        while (mIsBusy) {
            next();
        }
    }

    void act() {
        const unsigned action = pick(12);
        if (action < 5) {
            post();
        } else if (action < 9 && mIsBusy) {
            next();
        } else if (action == 9 && mIsSuspended && !mIsCallbackDue) {
            resume();
        } else if (action == 10 && !mIsSuspended) {
            mIsCallbackDue = !mTasks.empty();
            mIsSuspended = true;
            EXPECT_EQ(mQueue.suspend([this] { mHasSuspended.set(); }), !mIsCallbackDue);
        } else if (action == 11 && !mIsCallbackDue) {
            const unsigned type = pick(3);
            std::erase_if(mTasks,
                          [&](const auto& task) { return type == 0 || task.second == type; });
            type == 0 ? mQueue.clear() : mQueue.cancelTasks(type);
        }
        EXPECT_EQ(mQueue.pendingTaskCount(), mTasks.size());
        EXPECT_EQ(mQueue.hasPendingTasks(), !mTasks.empty());
    }

private:
    unsigned pick(unsigned count) { return static_cast<unsigned>(mRandom() % count); }
    void post() {
        const std::pair<int, std::uint32_t> task{++mCount, 1 + pick(2)};
        const unsigned position = pick(3); // only 1 is the front
        mTasks.insert(position == 1 ? mTasks.begin() : mTasks.end(), task);
        mQueue.post(std::to_string(mCount), TaskFunction([this, number = mCount] {
                        mRan = number;
                        mHasBegun.set();
                        mMayEnd.wait();
                    }),
                    position, task.second);
        if (!mIsBusy && !mIsSuspended) {
            awaitFront();
        }
    }
    void next() {
        mMayEnd.set();
        mIsBusy = false;
        if (std::exchange(mIsCallbackDue, false)) {
            mHasSuspended.wait();
        } else if (!mIsSuspended && !mTasks.empty()) {
            awaitFront();
        }
    }
    void resume() {
        mIsSuspended = false;
        if (mIsCallbackDue) {
            next();
        }
        mQueue.resume();
        if (!mIsBusy && !mTasks.empty()) {
            awaitFront();
        }
    }
    void awaitFront() {
        mHasBegun.wait();
        EXPECT_EQ(mRan, mTasks.front().first);
        EXPECT_EQ(mQueue.currentTaskName(), std::to_string(mTasks.front().first));
        mTasks.erase(mTasks.begin());
        mIsBusy = true;
    }

    std::mt19937 mRandom;
    std::vector<std::pair<int, std::uint32_t>> mTasks; ///< number and type of those that wait
    int mCount = 0;
    int mRan = 0;
    bool mIsBusy = false;
    bool mIsSuspended = false;
    bool mIsCallbackDue = false;
    Signal mHasBegun;
    Signal mMayEnd;
    Signal mHasSuspended;
    AsyncQueue mQueue{"Q", false};
};

TEST_F(AsyncQueueTest, DoesWhatAPlainListDoes) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        ModelledQueue queue(seed);
        for (int action = 0; action < 100 && !HasFailure(); ++action) {
            queue.act();
        }
    }
}

TEST_F(AsyncQueueTest, DestroysWhatItDropsOutsideTheLock) {
    for (const bool isCleared : {false, true}) {
        hold();
        // Asking the queue would wait for ever under its lock.
        const auto tell = [this](void*) {
            mNotes.push_back(std::to_string(mQueue->pendingTaskCount()) + " left");
        };
        add(
            "dropped", [told = std::shared_ptr<void>(nullptr, tell)] { ADD_FAILURE(); }, 0, 2);
        post("kept", 1, 3);
        isCleared ? mQueue->clear() : mQueue->cancelTasks(2);
        release();
        run("last");
    }
    EXPECT_THAT(mNotes, ElementsAre("1 left", "kept", "0 left"));
}

TEST_F(AsyncQueueTest, NamesItsThreadAfterTheRunningTaskAndLeavesNothingToTheNext) {
    for (const bool isRegistered : {false, true}) {
        mQueue = std::make_shared<AsyncQueue>("Q", isRegistered);
        std::uint32_t worker = 0;
        for (const std::string& name : {std::string("first"), std::string(300, 'x')}) {
            run(name, [&] {
                worker = platform::threadId();
                EXPECT_EQ(getThreadDescription(worker), "AsyncQueue::Q[" + name + "]");
                EXPECT_EQ(ScopedThreadNotifications::currentScope() != nullptr, isRegistered);
                EXPECT_EQ(hint_external_input::share(), nullptr);
                EXPECT_EQ(mQueue->threadId(), std::this_thread::get_id());
                hint_external_input::set("a task's", "context");
                ThreadUtilities::setThreadDescription("a task's own name");
            });
            while (!getThreadDescription(worker).empty()) { // it is back when there is no work
                std::this_thread::yield();
            }
        }
        hold();
        EXPECT_EQ(getThreadDescription(worker), "AsyncQueue::Q[hold]") << "from another thread";
        release();
        run("last");
    }
}

TEST_F(AsyncQueueTest, DetachesItsWorkerWhenATaskStopsOrDestroysItsOwnQueue) {
    for (const bool isStopped : {true, false}) {
        mQueue = std::make_shared<AsyncQueue>("Q", false);
        std::uint32_t worker = 0;
        Signal isLast;
        hold();
        add("end", [&] {
            worker = platform::threadId();
            if (isStopped) {
                mQueue->stop();
                EXPECT_TRUE(mQueue->isStopped() && mQueue->isQueueThread());
            }
            mQueue.reset();
        });
        add("next", [&] { isLast.set(); });
        release();
        isLast.wait();
        // The parked worker keeps the state alive when the queue is gone, and has the last name.
        while (getThreadDescription(worker) != "Detached::AsyncQueue::Q") {
            std::this_thread::yield();
        }
    }
}

TEST_F(AsyncQueueTest, LogsWhatATaskThrowsAndRunsTheNext) {
    testing::expectErrorLine("AsyncQueue[Q] Encountered");
    std::string assertion;
    setAssertionMessageHandler([&](const std::string& text, std::uint32_t line, const auto&...) {
        assertion = std::to_string(line) + " " + text;
    });
    add("flush", [] { throw std::runtime_error("boom"); });
    add("number", [] { throw 1; });
    mQueue->post("empty", TaskFunction(), 0, 0);
    post("next");
    mQueue->stop();
    setAssertionMessageHandler({});
    EXPECT_THAT(mNotes, ElementsAre("next"));
    const std::string encountered =
        "195 <Error> AsyncQueue[Q] Encountered an exception while running a task: ";
    EXPECT_THAT(logged(), ElementsAre(encountered + "boom with a task name of flush",
                                      "199 <Error> AsyncQueue[Q] Encountered a generic exception "
                                      "while running task number",
                                      encountered + std::bad_function_call().what() +
                                          " with a task name of empty"));
    EXPECT_EQ(assertion,
              "74 Assertion failed: mTask with message: TaskFunction called when empty, it's "
              "either been moved or default initialized. Called from File: AsyncQueue/AsyncQueue "
              "Line: 186");
}

TEST_F(AsyncQueueTest, EndsAfterASuspensionThatThrowsAndThoughEachTaskPostsAnother) {
    testing::expectErrorLine("AsyncQueue[Q]Encountered");
    Signal isSuspended;
    hold();
    post("one that waits");
    mQueue->suspend([&] {
        isSuspended.set();
        throw 1;
    });
    release();
    isSuspended.wait();
    mQueue->resume();
    std::function<void()> postNext = [&] { add("next", postNext); };
    run("first", postNext);
    mQueue->stop();
    EXPECT_EQ(mQueue->pendingTaskCount(), 0U);
}

} // namespace
} // namespace tarn
