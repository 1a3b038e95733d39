#include "AsyncQueueFixture.h"
#include "AsyncQueueProbe.h"
#include "platform/Identity.h"
#include "threading/ThreadUtilities.h"

#include <thread>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

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

TEST_F(AsyncQueueStopTest, DetachesItsWorkerWhenATaskStopsItsOwnQueue) {
    std::uint32_t worker = 0;
    std::promise<void> isLast;
    std::promise<std::string> nameAfterwards;
    hold();
    mQueue->post("stop", TaskFunction([&] {
                     worker = platform::threadId();
                     mQueue->stop();
                     EXPECT_TRUE(mQueue->isStopped());
                     EXPECT_TRUE(mQueue->isQueueThread());
                 }),
                 0, 0);
    // Destroyed on the worker after the naming that follows the stopping task.
    mQueue->post("next", TaskFunction([this] { note("next"); }), 0, 0);
    mQueue->post("last", TaskFunction([&] {
                     note("last");
                     isLast.set_value();
                 }),
                 0, 0);
    release();
    isLast.get_future().wait();
    EXPECT_THAT(notes(), ElementsAre("next", "last"));
    // The parked worker keeps the state alive when the queue is gone, and carries the last name.
    mQueue.reset();
    while (ThreadUtilities::getThreadDescription(worker) != "Detached::AsyncQueue::Q") {
        std::this_thread::yield();
    }
}

TEST_F(AsyncQueueStopTest, MayBeDestroyedByItsOwnTask) {
    std::promise<void> isDestroyed;
    hold();
    mQueue->post("destroy", TaskFunction([&] {
                     mQueue.reset();
                     note("destroyed");
                 }),
                 0, 0);
    mQueue->post("next", TaskFunction([&] { isDestroyed.set_value(); }), 0, 0);
    release();
    isDestroyed.get_future().wait();
    EXPECT_THAT(notes(), ElementsAre("destroyed"));
}

TEST_F(AsyncQueueStopTest, StaysExitingWhenTheWorkerCannotBeJoined) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread sanitizer forgets a thread whose joining failed";
#endif
    testing::expectErrorLine("Failure waiting for worker thread to finish. code=");
    AsyncQueueProbe probe(*mQueue);
    run("join itself", [&] {
        probe.forgetThread();
        mQueue->stop();
    }).wait();
    mQueue->stop();
    EXPECT_EQ(probe.state(), AsyncQueue::State::Exiting);
    EXPECT_THAT(logged(), ElementsAre(StartsWith("119 <Error> Failure waiting for worker thread to "
                                                 "finish. code=generic:")));
}

} // namespace
} // namespace tarn
