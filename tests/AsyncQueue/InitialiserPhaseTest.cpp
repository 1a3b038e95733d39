#include "AsyncQueue/QueueContext.h"
#include "AsyncQueueFixture.h"

namespace tarn {

using State = AsyncQueue::State;

/// Reaches what the queue's interface does not offer: no operation enters the initialiser phase.
class AsyncQueueProbe {
public:
    explicit AsyncQueueProbe(const AsyncQueue& queue) : mContext(queue.mContext) {}

    void enter(State state) {
        const std::lock_guard lock(mContext->mMutex);
        mContext->mState.exchange(state);
        mContext->wakeWorker();
    }
    void postInitialiser(const std::string& name, TaskFunction&& task) {
        const std::lock_guard lock(mContext->mMutex);
        mContext->mQueue.growBack() = {std::move(task), 0, name};
        mContext->wakeWorker();
    }

private:
    std::shared_ptr<AsyncQueue::Context> mContext;
};

namespace {

using InitialiserPhaseTest = AsyncQueueFixture;

TEST_F(InitialiserPhaseTest, HoldsPostsBackUntilTheInitialiserTasksAreDone) {
    AsyncQueueProbe probe(*mQueue);
    hold();
    probe.enter(State::Initialising);
    post("held back");
    post("dropped", 0, 5);
    post("held back, in front", 1);
    mQueue->cancelTasks(5);
    probe.postInitialiser("initialiser", TaskFunction([this] { note("initialiser"); }));
    testing::Signal isDone;
    probe.postInitialiser("last initialiser", TaskFunction([&] { isDone.set(); }));
    release();
    isDone.wait();
    EXPECT_EQ(mQueue->pendingTaskCount(), 2U);
    EXPECT_TRUE(mQueue->suspend(nullptr)) << "held back tasks do not count";
    mQueue->resume();
    probe.enter(State::Processing);
    run("last", [] {});
    EXPECT_THAT(notes(), ::testing::ElementsAre("initialiser", "held back, in front", "held back"));
    EXPECT_EQ(logged().back(), "240 <Info> Threadpool state is now running, name: Q");
}

} // namespace
} // namespace tarn
