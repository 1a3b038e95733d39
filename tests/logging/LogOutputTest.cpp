#include "logging/LogOutput.h"
#include "support/LogRecorder.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using testing::LogRecorder;

class LogOutputTest : public ::testing::Test {
protected:
    LogOutputTest() { mOutput.addSink(mSink); }

    void write(const std::string& message, const std::string& file = "File") {
        std::string whenLong;
        mOutput.write(LogRecord::capture(message, RootLoggerLevel::Info, 120, file, "function", "",
                                         whenLong));
    }

    std::shared_ptr<LogRecorder> mSink = std::make_shared<LogRecorder>();
    LogOutput mOutput;
};

TEST_F(LogOutputTest, GivesEachLineOnceToEverySinkWhateverAnotherThrows) {
    class ThrowingSink : public LogRecorder {
        void log(const std::string&, const LogComponents&) override { flush(); }
        void flush() override { throw std::runtime_error("disk on fire"); }
    };
    const auto last = std::make_shared<LogRecorder>();
    EXPECT_TRUE(mOutput.addSink(std::make_shared<ThrowingSink>()));
    EXPECT_TRUE(mOutput.addSink(last));
    EXPECT_FALSE(mOutput.addSink(mSink));
    write("message");
    mOutput.flush();
    for (const auto& sink : {mSink, last}) {
        EXPECT_THAT(sink->messages(), ElementsAre("message"));
        EXPECT_EQ(sink->flushCount(), 1);
    }
}

TEST_F(LogOutputTest, GivesLinesOfTheEngineToTheirSinkOnceTheyHaveOne) {
    write("an engine without a sink", "ZEL");
    const auto engineSink = std::make_shared<LogRecorder>();
    mOutput.setEngineSink(engineSink);
    write("engine", "ZEL");
    write("ordinary");
    mOutput.flush();
    EXPECT_THAT(engineSink->messages(), ElementsAre("engine"));
    EXPECT_EQ(engineSink->flushCount(), 1);
    EXPECT_THAT(mSink->messages(), ElementsAre("an engine without a sink", "ordinary"));
}

} // namespace
} // namespace tarn
