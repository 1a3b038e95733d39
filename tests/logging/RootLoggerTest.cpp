#include "logging/LogCall.h"
#include "logging/RootLogger.h"
#include "support/ErrorWatch.h"
#include "support/FatalLogSink.h"

#include <gmock/gmock.h>

#include <memory>
#include <thread>

namespace tarn {
namespace {

using ::testing::ElementsAre;

std::shared_ptr<testing::FatalLogSink> sharedSink() {
    // The logger keeps its sinks for ever.
    static const auto& sink = *new std::shared_ptr<testing::FatalLogSink>([] {
        auto created = std::make_shared<testing::FatalLogSink>();
        RootLogger::getInstance().registerLogger(created);
        testing::beforeErrorCheck([] { RootLogger::getInstance().flush(); });
        return created;
    }());
    return sink;
}

class RootLoggerTest : public ::testing::Test {
protected:
    RootLoggerTest() : mLogger(RootLogger::getInstance()), mSink(sharedSink()) {
        mLogger.flush();
        mLogger.setLogLevel(RootLoggerLevel::Trace);
        mLogger.flush();
        mSink->take();
    }

    /// All that was logged before. A flush gives up after five seconds, which a busy machine may
    /// need: the last line of all tells that it is there.
    std::vector<std::string> messages() {
        const std::string end = "the end";
        log(end, RootLoggerLevel::Test);
        std::vector<std::string> all;
        while (std::erase(all, end) == 0) {
            mLogger.flush();
            all = mSink->messages();
        }
        return all;
    }
    static void log(const std::string& message,
                    RootLoggerLevel::Level level = RootLoggerLevel::Info) {
        RootLogger::log(message, level, 1, "File", "function", "");
    }

    RootLogger& mLogger;
    std::shared_ptr<testing::FatalLogSink> mSink;
};

/// Runs an action on the worker, once, when a certain message comes by.
class ActingSink : public ILogger {
public:
    ActingSink(std::string message, std::function<void()> action)
        : mMessage(std::move(message)), mAction(std::move(action)) {}
    void log(const std::string& /*line*/, const LogComponents& components) override {
        if (components.message == mMessage) {
            std::exchange(mAction, [] {})();
        }
    }
    void clearLogs() override {}
    void close() override {}
    void flush() override {}

private:
    std::string mMessage;
    std::function<void()> mAction;
};

TEST_F(RootLoggerTest, TakesTheCallsOfTheLogMacro) {
    TARN_LOG_AT(RootLoggerLevel::Warn, 42, "value: " << 7);
    TARN_LOG(RootLoggerLevel::Trace, "never" << (ADD_FAILURE(), ""));
    mLogger.flush();
    const auto written = mSink->take();
    ASSERT_EQ(written.size(), 1U);
    EXPECT_THAT(written.front().first,
                ::testing::EndsWith("][]RootLoggerTest:42 TestBody::value: 7"));
    EXPECT_EQ(written.front().second.level, "Warn");
}

TEST_F(RootLoggerTest, DropsTraceUnknownAndPrivateByDefault) {
    for (int level = 0; level <= 7; ++level) {
        log(std::to_string(level), static_cast<RootLoggerLevel::Level>(level));
    }
    testing::expectErrorLine("5");
    EXPECT_THAT(messages(), ElementsAre("2", "3", "4", "5", "7"));
}

TEST_F(RootLoggerTest, TellsOfANewLevelBeforeItCounts) {
    mLogger.setLogLevel(RootLoggerLevel::Unknown);
    mLogger.setLogLevel(RootLoggerLevel::Warn);
    log("dropped");
    log("kept", RootLoggerLevel::Warn);
    mLogger.setLogLevel(RootLoggerLevel::Error);
    mLogger.setLogLevel(RootLoggerLevel::Debug);
    EXPECT_THAT(messages(), ElementsAre("Setting Log level to Warn", "kept"));
}

TEST_F(RootLoggerTest, MasksBlockedStringsOnceTheyAreLongEnough) {
    static int round = 10; // the logger never forgets a string, also when the case is repeated
    const std::string secret = "passphrase" + std::to_string(round++);
    mLogger.blockListString("xy");
    mLogger.blockListString(secret);
    mLogger.blockListString(secret);
    mLogger.flush(); // the worker logs, too
    log("xy and " + secret);
    EXPECT_THAT(messages(),
                ElementsAre("Attempting to add a string below minimum length to blocklist! "
                            "Length: 2",
                            "Adding blocklisted string of length: 12", "xy and ********"));
    EXPECT_EQ(mLogger.filterStrings("my " + secret + " is " + secret), "my ******** is ********");
}

TEST_F(RootLoggerTest, FlushesAndFiltersInsideItsOwnWorker) {
    mLogger.blockListString("inner secret");
    std::string filtered;
    int flushes = 0;
    mLogger.registerLogger(std::make_shared<ActingSink>("act on the worker", [&] {
        filtered = mLogger.filterStrings("an inner secret");
        mLogger.flush();
        flushes = mSink->flushCount();
    }));
    mLogger.flush();
    mSink->take();
    log("act on the worker");
    mLogger.flush();
    EXPECT_EQ(filtered, "an ********");
    EXPECT_EQ(flushes, 1);
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
