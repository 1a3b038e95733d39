// Everything that a queue can be asked for at once, and its end in the middle of it.

#include "AsyncQueue/AsyncQueue.h"

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace tarn {
namespace {

constexpr int kRounds = HAMMER_ROUNDS;
constexpr int kPosters = 4;
constexpr int kTasksOfPoster = 1000;

struct Count {
    std::atomic<int> ran{0};
    std::atomic<int> destroyed{0};
    std::atomic<int> ranTwice{0};
};

/// A task that tells once that it ran and once that it is gone.
auto countedTask(Count& count) {
    struct Life {
        explicit Life(Count& counted) : count(counted) {}
        ~Life() { ++count.destroyed; }
        Count& count;
        bool hasRun = false;
    };
    return [life = std::make_unique<Life>(count)] {
        life->count.ranTwice += std::exchange(life->hasRun, true) ? 1 : 0;
        ++life->count.ran;
    };
}

void meddle(const std::shared_ptr<AsyncQueue>& queue, const std::atomic<bool>& isEnding,
            unsigned seed) {
    std::mt19937 random(seed); // NOLINT: the same in every run
    const auto resumeLater = [weak = std::weak_ptr(queue)] {
        if (const auto alive = weak.lock()) {
            alive->resume();
        }
    };
    while (!isEnding) {
        switch (random() % 6) {
            case 0:
                queue->clear();
                break;
            case 1:
                queue->cancelTasks(7);
                break;
            case 2:
                queue->suspend({});
                break;
            case 3:
                queue->suspend(resumeLater);
                break;
            case 4:
                queue->pendingTaskCount();
                queue->currentTaskName();
                break;
            default:
                queue->resume();
                break;
        }
        std::this_thread::yield();
    }
    queue->resume(); // a suspended queue that holds tasks would never end
}

void postTasks(AsyncQueue& queue, Count& count, std::uint32_t type, std::atomic<int>& absent) {
    for (--absent; absent > 0;) { // all at once, or the first is done before the last has begun
        std::this_thread::yield();
    }
    for (int task = 0; task < kTasksOfPoster; ++task) {
        queue.post("counted", TaskFunction(countedTask(count)), task % 5 == 0 ? 1 : 0, type);
    }
}

/// Posts until one of them is neither dropped nor too late.
void stopByOwnTask(const std::shared_ptr<AsyncQueue>& queue) {
    while (!queue->isStopped()) {
        queue->post("stop", TaskFunction([weak = std::weak_ptr(queue)] {
                        if (const auto alive = weak.lock()) {
                            alive->stop();
                        }
                    }),
                    0, 0);
        std::this_thread::yield();
    }
}

enum class End { FromOutside, InTheMiddle, ByOwnTask };

void hammer(int number, End end) {
    SCOPED_TRACE(number);
    Count count;
    auto queue = std::make_shared<AsyncQueue>("Hammered", number % 2 == 0);
    std::atomic<bool> isEnding{false};
    std::thread meddler([&] { meddle(queue, isEnding, static_cast<unsigned>(number)); });
    std::atomic<int> absent{kPosters};
    std::vector<std::thread> posters;
    for (std::uint32_t poster = 0; poster < kPosters; ++poster) {
        posters.emplace_back(
            [&, poster] { postTasks(*queue, count, poster % 2 == 0 ? 7 : 0, absent); });
    }
    if (end == End::ByOwnTask) {
        stopByOwnTask(queue);
    }
    if (end != End::FromOutside) {
        isEnding = true;
        meddler.join();
        queue->stop();
    }
    for (std::thread& poster : posters) {
        poster.join();
    }
    if (end == End::FromOutside) {
        isEnding = true;
        meddler.join();
        queue->stop();
    }
    EXPECT_TRUE(queue->isStopped());
    queue.reset();
    if (end == End::ByOwnTask) {
        // The parked worker still runs what slipped in beside the stop.
        while (count.destroyed < kPosters * kTasksOfPoster) {
            std::this_thread::yield();
        }
    }
    EXPECT_EQ(count.destroyed, kPosters * kTasksOfPoster);
    EXPECT_LE(count.ran, kPosters * kTasksOfPoster);
    EXPECT_EQ(count.ranTwice, 0);
}

TEST(AsyncQueueHammer, RunsOrDropsEveryTaskOnceWhenStoppedFromOutside) {
    for (int number = 0; number < kRounds; ++number) {
        hammer(number, number % 2 == 0 ? End::FromOutside : End::InTheMiddle);
    }
}

// Its worker stays parked for the rest of the process's life, so there are few rounds.
TEST(AsyncQueueHammer, RunsOrDropsEveryTaskOnceWhenStoppedByItsOwnTask) {
    for (int number = 0; number < 10; ++number) {
        hammer(number, End::ByOwnTask);
    }
}

} // namespace
} // namespace tarn
