#include "AsyncQueue/AsyncQueueDestroyedException.h"
#include "AsyncQueueFixture.h"
#include "platform/Identity.h"
#include "threading/Assertion.h"
#include "threading/ThreadUtilities.h"

#include <functional>
#include <stdexcept>
#include <thread>

namespace tarn {
namespace {

using ::testing::ElementsAre;

using AsyncQueueStopTest = AsyncQueueFixture;

TEST_F(AsyncQueueStopTest, RunsWhatIsQueuedAndTakesNothingAfterwards) {
    hold();
    post("queued 1");
    post("queued 2");
    EXPECT_FALSE(mQueue->isStopped());
    std::thread stopper([this] { mQueue->stop(); });
    release();
    stopper.join();
    EXPECT_TRUE(mQueue->isStopped());
    mQueue->stop();
    post("too late");
    EXPECT_EQ(mQueue->pendingTaskCount(), 0U);
    EXPECT_THAT(notes(), ElementsAre("queued 1", "queued 2"));
    EXPECT_EQ(mQueue->threadId(), std::thread::id());
}

TEST_F(AsyncQueueStopTest, DetachesItsWorkerWhenATaskStopsOrDestroysItsOwnQueue) {
    for (const bool isStopped : {true, false}) {
        mQueue = std::make_shared<AsyncQueue>("Q", false);
        std::uint32_t worker = 0;
        testing::Signal isLast;
        hold();
        mQueue->post("end", TaskFunction([&] {
                         worker = platform::threadId();
                         if (isStopped) {
                             mQueue->stop();
                             EXPECT_TRUE(mQueue->isStopped() && mQueue->isQueueThread());
                         }
                         mQueue.reset();
                     }),
                     0, 0);
        mQueue->post("next", TaskFunction([&] { isLast.set(); }), 0, 0);
        release();
        isLast.wait();
        // The parked worker keeps the state alive when the queue is gone, and carries the last
        // name.
        while (ThreadUtilities::getThreadDescription(worker) != "Detached::AsyncQueue::Q") {
            std::this_thread::yield();
        }
    }
}

TEST_F(AsyncQueueStopTest, LogsWhatATaskThrowsAndRunsTheNext) {
    testing::expectErrorLine("AsyncQueue[Q] Encountered");
    std::string assertion;
    setAssertionMessageHandler([&](const std::string& text, std::uint32_t line, const auto&...) {
        assertion = std::to_string(line) + " " + text;
    });
    mQueue->post("flush", TaskFunction([] { throw std::runtime_error("boom"); }), 0, 0);
    mQueue->post("number", TaskFunction([] { throw 1; }), 0, 0);
    mQueue->post("empty", TaskFunction(), 0, 0);
    post("next");
    mQueue->stop();
    setAssertionMessageHandler({});
    EXPECT_THAT(notes(), ElementsAre("next"));
    const std::string encountered =
        "195 <Error> AsyncQueue[Q] Encountered an exception while "
        "running a task: ";
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

TEST_F(AsyncQueueStopTest, EndsItsWorkerWhenATaskSaysThatItsObjectIsGone) {
    mQueue->post("orphan", TaskFunction([] { throw AsyncQueueDestroyedException(); }), 0, 0);
    post("never");
    // Nothing else tells that the worker has gone than that it can be joined.
    mQueue->stop();
    EXPECT_EQ(mQueue->pendingTaskCount(), 1U);
    EXPECT_EQ(mQueue->currentTaskName(), "orphan");
    EXPECT_THAT(notes(), ElementsAre());
    EXPECT_THAT(logged(), ElementsAre("190 <Warn> AsyncQueue[Q] Destructed running taskorphan"));
    mQueue = std::make_shared<AsyncQueue>("Q", false);
    mQueue->post("last", TaskFunction([this] {
                     mQueue->stop();
                     throw AsyncQueueDestroyedException();
                 }),
                 0, 0);
    while (mQueue->threadId() != std::thread::id()) { // a thread that has ended is nobody's
        std::this_thread::yield();
    }
}

} // namespace
} // namespace tarn
