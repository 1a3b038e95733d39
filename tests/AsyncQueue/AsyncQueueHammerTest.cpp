// Everything that a queue can be asked for at once, and its end in the middle of it.

#include "AsyncQueue/AsyncQueue.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace tarn {
namespace {

constexpr int kPosters = 4;
constexpr int kTasksOfPoster = 1000;
constexpr std::uint32_t kDroppable = 7;

enum class End { FromOutside, InTheMiddle, ByOwnTask };

class Hammer {
public:
    Hammer(int number, End end)
        : mEnd(end),
          mMayClear(number % 3 != 0),
          mQueue(std::make_shared<AsyncQueue>("Hammered", number % 2 == 0)) {
        std::thread meddler([this, number] { meddle(static_cast<unsigned>(number)); });
        std::vector<std::thread> posters;
        for (std::size_t poster = 0; poster < kPosters; ++poster) {
            posters.emplace_back([this, poster] { postTasks(poster); });
        }
        const auto stop = [&] {
            mIsEnding = true;
            meddler.join();
            mQueue->stop();
        };
        if (end == End::ByOwnTask) {
            stopByOwnTask();
        }
        if (end != End::FromOutside) {
            stop();
        }
        for (std::thread& poster : posters) {
            poster.join();
        }
        if (end == End::FromOutside) {
            stop();
        }
    }

    void check() {
        EXPECT_TRUE(mQueue->isStopped());
        mQueue.reset();
        while (mEnd == End::ByOwnTask && mDestroyed < kPosters * kTasksOfPoster) {
            std::this_thread::yield(); // the parked worker runs what slipped in beside the stop
        }
        EXPECT_EQ(mDestroyed, kPosters * kTasksOfPoster);
        EXPECT_EQ(mFaults, 0);
        if (mEnd == End::FromOutside && !mMayClear) {
            EXPECT_EQ(mRan, kPosters / 2 * kTasksOfPoster) << "of those that nobody dropped";
        }
    }

private:
    void postTasks(std::size_t poster) {
        for (--mAbsent; mAbsent > 0;) { // all at once, or the first is done before the last begins
            std::this_thread::yield();
        }
        for (int number = 0; number < kTasksOfPoster; ++number) {
            const bool isInFront = number % 5 == 0;
            std::shared_ptr<void> life(nullptr, [this](void*) { ++mDestroyed; });
            mQueue->post("counted",
                         TaskFunction([this, poster, number, isInFront, life = std::move(life)] {
                             auto& hasRun = mHasRun[poster][static_cast<std::size_t>(number)];
                             mFaults += std::exchange(hasRun, true) ? 1 : 0;
                             mRan += poster % 2 == 0 ? 1 : 0;
                             mFaults += !isInFront && std::exchange(mLast[poster], number) > number;
                         }),
                         isInFront ? 1 : 0, poster % 2 == 0 ? 0 : kDroppable);
        }
    }
    void meddle(unsigned seed) {
        std::mt19937 random(seed); // NOLINT: the same in every run
        const std::function<void()> actions[] = {
            [&] { mMayClear ? mQueue->clear() : mQueue->cancelTasks(kDroppable); },
            [&] { mQueue->suspend({}); },
            [&] {
                mQueue->suspend([weak = std::weak_ptr(mQueue)] {
                    if (const auto alive = weak.lock()) {
                        alive->resume();
                    }
                });
            },
            [&] { mQueue->pendingTaskCount(); },
            [&] { mQueue->currentTaskName(); },
            [&] { mQueue->resume(); },
        };
        while (!mIsEnding) {
            actions[random() % std::size(actions)]();
            std::this_thread::yield();
        }
        mQueue->resume(); // a suspended queue that holds tasks would never end
    }
    /// Posts until one of them is neither dropped nor too late.
    void stopByOwnTask() {
        for (int tries = 0; !mQueue->isStopped(); ++tries) {
            // On a slow machine the meddler may drop every one of them.
            mIsEnding = mIsEnding || tries > 1000;
            mQueue->post("stop", TaskFunction([weak = std::weak_ptr(mQueue)] {
                             if (const auto alive = weak.lock()) {
                                 alive->stop();
                             }
                         }),
                         0, 0);
            std::this_thread::yield();
        }
    }

    const End mEnd;
    const bool mMayClear;
    std::atomic<int> mRan{0};
    std::atomic<int> mDestroyed{0};
    std::atomic<int> mFaults{0};
    std::atomic<int> mAbsent{kPosters};
    std::atomic<bool> mIsEnding{false};
    std::array<int, kPosters> mLast{}; ///< the worker's, as the next
    std::array<std::array<bool, kTasksOfPoster>, kPosters> mHasRun{};
    std::shared_ptr<AsyncQueue> mQueue;
};

TEST(AsyncQueueHammer, RunsOrDropsEveryTaskOnceAndInOrderHoweverItIsStopped) {
    for (int number = 0; number < HAMMER_ROUNDS; ++number) {
        SCOPED_TRACE(number);
        // The worker of ByOwnTask stays parked for the rest of the process's life: few rounds.
        const End end = number < 10 ? End::ByOwnTask : static_cast<End>(number % 2);
        Hammer(number, end).check();
    }
}

} // namespace
} // namespace tarn
