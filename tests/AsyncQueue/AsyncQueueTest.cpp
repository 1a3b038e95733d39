#include "AsyncQueueFixture.h"
#include "platform/Identity.h"
#include "threading/ScopedThreadNotifications.h"
#include "threading/ThreadUtilities.h"

#include <thread>

namespace tarn {
namespace {

using ::testing::ElementsAre;

using AsyncQueueTest = AsyncQueueFixture;

TEST_F(AsyncQueueTest, RunsFrontPostedTasksInReverseOrderOfPostingBeforeTheOthers) {
    hold();
    post("back 1");
    post("back 2", 2);
    post("front 1", 1);
    post("front 2", 1);
    EXPECT_EQ(mQueue->pendingTaskCount(), 4U);
    EXPECT_TRUE(mQueue->hasPendingTasks());
    release();
    mQueue->stop();
    EXPECT_THAT(notes(), ElementsAre("front 2", "front 1", "back 1", "back 2"));
    EXPECT_FALSE(mQueue->hasPendingTasks());
}

TEST_F(AsyncQueueTest, DropsTasksByTypeOrAllAndDestroysThemOutsideTheLock) {
    for (const bool isCleared : {false, true}) {
        SCOPED_TRACE(isCleared);
        mNotes.clear();
        hold();
        post("kept 1", 0, 1);
        for (int count = 0; count < 2; ++count) {
            // Asking the queue would wait for ever under its lock.
            mQueue->post("dropped", TaskFunction(OnDestruction([this] {
                             note("left: " + std::to_string(mQueue->pendingTaskCount()));
                         })),
                         0, 2);
        }
        post("kept 2", 1, 3);
        mQueue->cancelTasks(77);
        EXPECT_EQ(mQueue->pendingTaskCount(), 4U);
        isCleared ? mQueue->clear() : mQueue->cancelTasks(2);
        EXPECT_EQ(mQueue->hasPendingTasks(), !isCleared);
        release();
        run("last", [] {}).wait();
        EXPECT_EQ(notes(),
                  isCleared ? std::vector<std::string>({"left: 0", "left: 0"})
                            : std::vector<std::string>({"left: 2", "left: 2", "kept 2", "kept 1"}));
    }
}

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
    post("later");
    expected.emplace_back("later");
    post("front 1", 1);
    post("front 2", 1);
    mQueue->cancelTasks(2);
    EXPECT_EQ(mQueue->pendingTaskCount(), expected.size());
    std::promise<void> isSuspended;
    EXPECT_FALSE(mQueue->suspend([&] { isSuspended.set_value(); }));
    mayGoOn.set();
    isSuspended.get_future().wait();
    EXPECT_EQ(mQueue->pendingTaskCount(), expected.size());
    mQueue->resume();
    run("last", [] {}).wait();
    EXPECT_EQ(notes(), expected);
}

TEST_F(AsyncQueueTest, NamesItsThreadAfterTheRunningTask) {
    std::uint32_t worker = 0;
    for (const char* name : {"first", "first", "second"}) {
        run(name, [&] {
            worker = platform::threadId();
            EXPECT_EQ(mQueue->currentTaskName(), name);
            EXPECT_EQ(ThreadUtilities::getThreadDescription(worker),
                      "AsyncQueue::Q[" + std::string(name) + "]");
            EXPECT_EQ(ScopedThreadNotifications::currentScope(), nullptr);
            EXPECT_EQ(hint_external_input::share(), nullptr);
            EXPECT_TRUE(mQueue->isQueueThread());
            EXPECT_EQ(mQueue->threadId(), std::this_thread::get_id());
            // Neither may be left to the next task.
            ThreadUtilities::setThreadDescription("a task's own name");
            hint_external_input::set("a task's", "context");
        }).wait();
    }
    hold();
    std::promise<std::string> idleName;
    mQueue->post("last", TaskFunction([] {}), 0, 0);
    EXPECT_FALSE(mQueue->suspend([&] {
        idleName.set_value(mQueue->currentTaskName() + "|" +
                           ThreadUtilities::getThreadDescription(worker));
    }));
    release();
    EXPECT_EQ(idleName.get_future().get(), "|AsyncQueue::Q[Suspension]");
    mQueue->resume();
    EXPECT_FALSE(mQueue->isQueueThread());
}

TEST_F(AsyncQueueTest, RegistersItsScopesWhenAskedTo) {
    mQueue = std::make_shared<AsyncQueue>("R", true);
    run("look", [] { EXPECT_NE(ScopedThreadNotifications::currentScope(), nullptr); }).wait();
}

TEST_F(AsyncQueueTest, KeepsEachPostersOrderWhileOthersDropSuspendAndResume) {
    constexpr int kPosters = 8;
    constexpr int kTasks = 2000;
    std::vector<int> next(kPosters, 0);
    bool isInOrder = true;
    std::vector<std::thread> threads;
    for (int poster = 0; poster < kPosters; ++poster) {
        threads.emplace_back([&, poster] {
            for (int number = 0; number < kTasks; ++number) {
                mQueue->post("count", TaskFunction([&, poster, number] {
                                 auto& expected = next[static_cast<std::size_t>(poster)];
                                 isInOrder = isInOrder && expected == number;
                                 expected = number + 1;
                             }),
                             0, 0);
                mQueue->post("droppable", TaskFunction([] {}), number % 3 == 0 ? 1 : 0, 9);
            }
        });
    }
    threads.emplace_back([&] {
        for (int round = 0; round < 200; ++round) {
            mQueue->suspend(round % 2 == 0 ? std::function<void()>()
                                           : [this] { mQueue->resume(); });
            mQueue->cancelTasks(9);
            mQueue->resume();
        }
    });
    for (std::thread& thread : threads) {
        thread.join();
    }
    mQueue->resume();
    run("drained", [] {}).wait();
    EXPECT_TRUE(isInOrder);
    EXPECT_THAT(next, ::testing::Each(kTasks));
}

} // namespace
} // namespace tarn
