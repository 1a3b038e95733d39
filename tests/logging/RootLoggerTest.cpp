#include "AsyncQueue/AsyncQueue.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "support/LogRecorder.h"
#include "support/Signal.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

namespace tarn {
namespace {

using ::testing::ElementsAre;

/// The logger is one for the process, and keeps its queue and its sinks for ever.
class RootLoggerTest : public ::testing::Test {
protected:
    RootLoggerTest() {
        static const std::size_t queuedAtStart = start();
        EXPECT_EQ(queuedAtStart, 1U) << "what no sink is there for costs nothing";
        mLogger.setLogLevel(RootLoggerLevel::Trace);
        messages();
        mSink->take();
    }

    std::size_t start() {
        hold();
        mLogger.init(mSink, nullptr, "folder");
        log("the sink is not registered yet");
        const std::size_t queued = mQueue->pendingTaskCount();
        release();
        return queued;
    }
    /// Keeps the worker busy.
    void hold() {
        mQueue->post("hold", TaskFunction([this] {
                         mIsHolding.set();
                         mMayGoOn.wait();
                     }),
                     0, 0);
        mIsHolding.wait();
    }
    void release() { mMayGoOn.set(); }
    /// All that was logged before, and what the worker logged for it.
    std::vector<std::string> messages() {
        mLogger.filterStrings("waits for all before it");
        mLogger.filterStrings("and for the worker's own lines");
        return mSink->messages();
    }
    static void log(const std::string& message) {
        RootLogger::log(message, RootLoggerLevel::Info, 1, "File", "function", "");
    }

    template <typename T, typename... Arguments>
    static const std::shared_ptr<T>& leaked(Arguments... arguments) {
        static const auto& kept = *new std::shared_ptr<T>(std::make_shared<T>(arguments...));
        return kept;
    }

    const std::shared_ptr<AsyncQueue>& mQueue = leaked<AsyncQueue>("RootLogger", false);
    const std::shared_ptr<testing::LogRecorder>& mSink = leaked<testing::LogRecorder>();
    RootLogger& mLogger = RootLogger::getInstance(mQueue);
    testing::Signal mIsHolding;
    testing::Signal mMayGoOn;
};

TEST_F(RootLoggerTest, TakesTheCallsOfTheLogMacroAndTellsOfANewLevelBeforeItCounts) {
    TARN_LOG(RootLoggerLevel::Trace, "never" << (ADD_FAILURE(), ""));
    mLogger.setLogLevel(RootLoggerLevel::Unknown);
    mLogger.setLogLevel(RootLoggerLevel::Warn);
    TARN_LOG(RootLoggerLevel::Info, "never" << (ADD_FAILURE(), ""));
    TARN_LOG_AT(RootLoggerLevel::Warn, 42, "value: " << 7);
    mLogger.setLogLevel(RootLoggerLevel::Debug);
    EXPECT_THAT(messages(), ElementsAre("Setting Log level to Warn", "value: 7"));
    EXPECT_THAT(mSink->take().back().first,
                ::testing::EndsWith("][]RootLoggerTest:42 TestBody::value: 7"));
}

TEST_F(RootLoggerTest, MasksWhatWaitsWhenAStringIsBlocked) {
    static int round = 10; // the logger never forgets a string, also when the case is repeated
    const std::string secret = "passphrase" + std::to_string(round++);
    hold();
    mLogger.blockListString("xy");
    log("xy and " + secret);
    mLogger.blockListString(secret);
    mLogger.blockListString(secret);
    release();
    EXPECT_THAT(messages(),
                ElementsAre("Attempting to add a string below minimum length to blocklist! "
                            "Length: 2",
                            "xy and ********", "Adding blocklisted string of length: 12"));
    mLogger.blockListString("q3z"); // the shortest that counts
    EXPECT_EQ(mLogger.filterStrings(secret + " is q3z"), "******** is ********");
}

TEST_F(RootLoggerTest, KeepsTheOrderOfLinesAndSinksAndLosesOnlyWhatIsDropped) {
    const auto late = std::make_shared<testing::LogRecorder>();
    hold();
    log("dropped");
    mQueue->clear();
    log("before the sink");
    mLogger.registerLogger(late);
    log("after the sink");
    log("at once");
    release();
    EXPECT_THAT(messages(), ElementsAre("before the sink", "after the sink", "at once"));
    EXPECT_THAT(late->messages(), ElementsAre("after the sink", "at once"));
}

TEST_F(RootLoggerTest, WaitsFiveSecondsForAFlushAndOnItsOwnWorkerNotAtAll) {
    using namespace std::chrono;
    hold();
    const auto begin = steady_clock::now();
    mLogger.flush();
    const auto waited = steady_clock::now() - begin;
    release();
    EXPECT_GE(waited, milliseconds(4900));
    EXPECT_LE(waited, seconds(30));
    mLogger.blockListString("inner secret");
    mQueue->post("inside", TaskFunction([&] {
                     EXPECT_EQ(mSink->flushCount(), 1) << "the task outlives the wait";
                     mLogger.flush();
                     EXPECT_EQ(mSink->flushCount(), 2);
                     EXPECT_EQ(mLogger.filterStrings("an inner secret"), "an ********");
                 }),
                 0, 0);
    messages();
}

TEST_F(RootLoggerTest, LetsTheProcessExitWhileThreadsLog) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto leave = [] {
        for (int thread = 0; thread < 4; ++thread) {
            std::thread([] {
                while (true) {
                    log("still here");
                }
            }).detach();
        }
        RootLogger::getInstance().flush();
        std::exit(0); // NOLINT(concurrency-mt-unsafe)
    };
    EXPECT_EXIT(leave(), ::testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace tarn
