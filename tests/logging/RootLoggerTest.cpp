#include "logging/LogCall.h"
#include "logging/RootLogger.h"
#include "platform/Identity.h"
#include "support/ErrorWatch.h"
#include "support/FatalLogSink.h"

#include <gmock/gmock.h>

#include <memory>
#include <sstream>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;

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
        mSink->take();
    }

    std::vector<std::string> messages() {
        mLogger.flush();
        return mSink->messages();
    }

    RootLogger& mLogger;
    std::shared_ptr<testing::FatalLogSink> mSink;
};

TEST_F(RootLoggerTest, WritesALineInItsFormat) {
    RootLogger::log("text of the message", RootLoggerLevel::Debug, 120, "logging/RootLogger",
                    "flush", "");
    mLogger.flush();
    std::ostringstream ids;
    ids << platform::processId() << ":0x" << std::hex << platform::threadId();
    ASSERT_EQ(mSink->lines().size(), 1U);
    const std::string line = mSink->lines().front();
    EXPECT_EQ(line.substr(20),
              " <Debug> [" + ids.str() + "][]RootLogger:120 flush::text of the message");
}

} // namespace
} // namespace tarn
