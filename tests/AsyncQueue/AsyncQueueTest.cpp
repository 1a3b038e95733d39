#include "AsyncQueueFixture.h"
#include "platform/Identity.h"
#include "threading/ScopedThreadNotifications.h"
#include "threading/ThreadUtilities.h"

#include <stdexcept>
#include <thread>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ThreadUtilities::getThreadDescription;

using AsyncQueueTest = AsyncQueueFixture;

TEST_F(AsyncQueueTest, PrecedesDropsAndHoldsBackWhatTheWorkerHasAlreadyTaken) {
    testing::Signal isTaken;
    testing::Signal mayGoOn;
    hold();
    mQueue->post("gate", TaskFunction([&] {
                     isTaken.set();
                     mayGoOn.wait();
                 }),
                 0, 0);
    std::vector<std::string> expected{"front 2", "front 1"};
    for (int number = 0; number < 300; ++number) { // more than the queue keeps in one piece
        post(std::to_string(number), 0, number % 3 == 0 ? 1 : 2);
        if (number % 3 == 0) {
            expected.push_back(std::to_string(number));
        }
    }
    release();
    isTaken.wait();
    post("later", 2);
    expected.emplace_back("later");
    post("front 1", 1);
    post("front 2", 1);
    mQueue->cancelTasks(2);
    mQueue->cancelTasks(77);
    testing::Signal isSuspended;
    EXPECT_FALSE(mQueue->suspend([&] { isSuspended.set(); }));
    mayGoOn.set();
    isSuspended.wait();
    EXPECT_EQ(mQueue->pendingTaskCount(), expected.size());
    mQueue->resume();
    run("last", [] {});
    EXPECT_EQ(notes(), expected);
    EXPECT_FALSE(mQueue->hasPendingTasks());
}

TEST_F(AsyncQueueTest, DestroysWhatItDropsOutsideTheLock) {
    for (const bool isCleared : {false, true}) {
        hold();
        // Asking the queue would wait for ever under its lock.
        const auto tell = [this](void*) {
            note(std::to_string(mQueue->pendingTaskCount()) + " left");
        };
        mQueue->post("dropped",
                     TaskFunction([told = std::shared_ptr<void>(nullptr, tell)] { ADD_FAILURE(); }),
                     0, 2);
        post("kept", 1, 3);
        isCleared ? mQueue->clear() : mQueue->cancelTasks(2);
        release();
        run("last", [] {});
    }
    EXPECT_THAT(notes(), ElementsAre("1 left", "kept", "0 left"));
}

TEST_F(AsyncQueueTest, NamesItsThreadAfterTheRunningTask) {
    for (const bool isRegistered : {false, true}) {
        mQueue = std::make_shared<AsyncQueue>("Q", isRegistered);
        std::uint32_t worker = 0;
        for (const auto& [name, ownName] :
             std::initializer_list<std::pair<std::string, std::string>>{
                 {"first", ""}, {"first", "a task's own name"}, {"second", ""}}) {
            run(name, [&, &name = name, &ownName = ownName] {
                worker = platform::threadId();
                EXPECT_EQ(mQueue->currentTaskName(), name);
                EXPECT_EQ(getThreadDescription(worker), "AsyncQueue::Q[" + name + "]");
                EXPECT_EQ(ScopedThreadNotifications::currentScope() != nullptr, isRegistered);
                EXPECT_EQ(hint_external_input::share(), nullptr);
                EXPECT_EQ(mQueue->threadId(), std::this_thread::get_id());
                // Neither may be left to the next task.
                hint_external_input::set("a task's", "context");
                if (!ownName.empty()) {
                    ThreadUtilities::setThreadDescription(ownName);
                }
            });
            // Its own name comes back when it has nothing to do.
            while (!getThreadDescription(worker).empty()) {
                std::this_thread::yield();
            }
        }
        hold();
        post("later");
        testing::Signal isSuspended;
        std::string idleName;
        EXPECT_FALSE(mQueue->suspend([&] {
            idleName = mQueue->currentTaskName() + "|" + getThreadDescription(worker);
            isSuspended.set();
        }));
        release();
        isSuspended.wait();
        EXPECT_EQ(idleName, "|AsyncQueue::Q[Suspension]");
        EXPECT_FALSE(mQueue->isQueueThread());
        mQueue->resume();
        run("last", [] {});
    }
}

TEST_F(AsyncQueueTest, SuspendsAnIdleQueueAtOnceAndABusyOneAfterItsRunningTask) {
    hold();
    EXPECT_TRUE(mQueue->suspend([] { ADD_FAILURE(); })) << "only what is queued counts";
    release();
    mQueue->resume();
    testing::expectErrorLine("AsyncQueue[Q]");
    testing::Signal isCalled;
    const std::function<void()> callbacks[] = {
        nullptr,
        [&] {
            isCalled.set();
            throw std::runtime_error("boom");
        },
        [&] {
            isCalled.set();
            throw 1;
        },
    };
    for (const auto& callback : callbacks) {
        hold();
        post("later");
        EXPECT_FALSE(mQueue->suspend(callback));
        release();
        if (callback) {
            isCalled.wait();
        }
        EXPECT_EQ(mQueue->pendingTaskCount(), 1U);
        mQueue->resume();
        while (mQueue->hasPendingTasks()) { // another post would wake the worker, too
            std::this_thread::yield();
        }
        run("last", [] {});
    }
    EXPECT_THAT(notes(), ElementsAre("later", "later", "later"));
    const std::string entering = "370 <Info> Entering, asking the threadpool to suspend: Q";
    const std::string ready =
        "139 <Info> mHasFinishedFunc is not nil, so we are ready to suspend and notify callback: Q";
    EXPECT_THAT(logged(),
                ElementsAre(entering, entering, entering, ready,
                            "153 <Error> AsyncQueue[Q] Encountered an exception while calling "
                            "suspension lambda: boom",
                            entering, ready,
                            "157 <Error> AsyncQueue[Q]Encountered a generic exception while "
                            "calling suspension lambda"));
}

} // namespace
} // namespace tarn
