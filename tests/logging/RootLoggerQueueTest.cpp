#include "AsyncQueue/IAsyncQueue.h"
#include "logging/LogCall.h"
#include "logging/RootLogger.h"
#include "support/FatalLogSink.h"

#include <gmock/gmock.h>

#include <chrono>
#include <deque>

// The root logger is one for the process: these cases have a program of their own, in which it runs
// on a queue that the test turns by hand.
namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

class HandTurnedQueue : public IAsyncQueue {
public:
    void post(const std::string& taskName, TaskFunction&& task, std::uint32_t position,
              std::uint32_t taskType) override {
        mPosts.push_back(taskName + " " + std::to_string(position) + " " +
                         std::to_string(taskType));
        if (mPostsThrow) {
            throw std::runtime_error("no memory");
        }
        mTasks.insert(position == 1 ? mTasks.begin() : mTasks.end(), std::move(task));
    }
    void cancelTasks(std::uint32_t /*taskType*/) override {}
    void clear() override {}
    bool hasPendingTasks() override { return !mTasks.empty(); }
    bool suspend(std::function<void()> /*callback*/) override { return false; }
    void resume() override {}
    std::size_t pendingTaskCount() override { return mTasks.size(); }
    void stop() override {}
    std::thread::id threadId() override { return {}; }
    bool isQueueThread() override { return false; }
    bool isStopped() override { return false; }
    std::string currentTaskName() override { return {}; }

    std::vector<std::string> takePosts() { return std::exchange(mPosts, {}); }
    void runAll() {
        while (!mTasks.empty()) {
            TaskFunction task = std::move(mTasks.front());
            mTasks.pop_front();
            task({});
        }
    }
    void setPostsThrow(bool doThrow) { mPostsThrow = doThrow; }

private:
    std::vector<std::string> mPosts;
    std::deque<TaskFunction> mTasks;
    bool mPostsThrow = false;
};

TEST(RootLoggerQueue, CarriesEverythingThatTheLoggerDoes) {
    // The logger keeps its queue and its sink for ever.
    const auto queue = std::make_shared<HandTurnedQueue>();
    const auto sink = std::make_shared<testing::FatalLogSink>();
    const auto log = [](const std::string& message) {
        TARN_LOG_AT(RootLoggerLevel::Info, 7, message);
    };
    log("no logger yet");
    RootLogger& logger = RootLogger::getInstance(queue);
    EXPECT_EQ(&RootLogger::getInstance(), &logger);
    log("no sink yet");
    EXPECT_THAT(queue->takePosts(), IsEmpty());

    logger.init(sink, nullptr, "folder");
    log("not registered yet");
    EXPECT_THAT(queue->takePosts(), ElementsAre("registerLogger 0 0"));
    queue->runAll();

    log("a secret that waits");
    logger.blockListString("secret");
    EXPECT_THAT(queue->takePosts(), ElementsAre("doLog 0 0", "blockListString 1 0"));
    queue->runAll();
    queue->runAll();
    EXPECT_THAT(sink->messages(),
                ElementsAre("a ******** that waits", "Adding blocklisted string of length: 6"));
    queue->takePosts();

    queue->setPostsThrow(true);
    log("cannot be queued");
    queue->setPostsThrow(false);
    queue->takePosts();

    const auto begin = std::chrono::steady_clock::now();
    logger.flush();
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(waited, std::chrono::milliseconds(4900));
    EXPECT_LE(waited, std::chrono::seconds(30));
    EXPECT_THAT(queue->takePosts(), ElementsAre("flush 0 0"));
    EXPECT_EQ(sink->flushCount(), 0);
    queue->runAll(); // the task outlives the wait
    EXPECT_EQ(sink->flushCount(), 1);
}

} // namespace
} // namespace tarn
