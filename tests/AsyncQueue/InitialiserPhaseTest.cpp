#include "AsyncQueueFixture.h"
#include "AsyncQueueProbe.h"

namespace tarn {
namespace {

using ::testing::ElementsAre;
using State = AsyncQueue::State;

using InitialiserPhaseTest = AsyncQueueFixture;

TEST_F(InitialiserPhaseTest, HoldsPostsBackUntilTheInitialiserTasksAreDone) {
    AsyncQueueProbe probe(*mQueue);
    hold();
    probe.enter(State::Initialising);
    post("held back");
    post("dropped", 0, 5);
    post("held back, in front", 1);
    EXPECT_EQ(probe.heldBackCount(), 3U);
    EXPECT_EQ(mQueue->pendingTaskCount(), 3U);
    mQueue->cancelTasks(5);
    EXPECT_EQ(probe.heldBackCount(), 2U);
    probe.postDirectly("initialiser", TaskFunction([this] { note("initialiser"); }));
    std::promise<void> isDone;
    probe.postDirectly("last initialiser", TaskFunction([&] { isDone.set_value(); }));
    release();
    isDone.get_future().wait();
    EXPECT_EQ(mQueue->pendingTaskCount(), 2U);
    EXPECT_TRUE(mQueue->suspend(nullptr)) << "held back tasks do not count";
    mQueue->resume();
    probe.enter(State::Processing);
    while (probe.state() != State::Running) {
        std::this_thread::yield();
    }
    run("last", [] {}).wait();
    EXPECT_THAT(notes(), ElementsAre("initialiser", "held back, in front", "held back"));
    EXPECT_THAT(logged(), ElementsAre("370 <Info> Entering, asking the threadpool to suspend: Q",
                                      "240 <Info> Threadpool state is now running, name: Q"));
}

TEST_F(InitialiserPhaseTest, SwapsNothingOutOfTurn) {
    AsyncQueueProbe probe(*mQueue);
    hold();
    probe.swapQueues();
    probe.enter(State::Processing);
    probe.postDirectly("initialiser", TaskFunction([] {}));
    post("held back");
    probe.swapQueues();
    EXPECT_EQ(probe.heldBackCount(), 1U);
    EXPECT_THAT(logged(),
                ElementsAre("229 <Warn> Thread pool not in processing state, cannot swap queues: Q",
                            "240 <Info> Threadpool state is now running, name: Q",
                            "233 <Warn> Initialiser task queued after setting initialised to true, "
                            "delaying queue swap: Q",
                            "240 <Info> Threadpool state is now processing, name: Q"));
}

} // namespace
} // namespace tarn
