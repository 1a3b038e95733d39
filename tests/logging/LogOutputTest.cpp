#include "logging/LogOutput.h"
#include "platform/Identity.h"
#include "support/LogRecorder.h"
#include "threading/ScopedThreadNotifications.h"

#include <gmock/gmock.h>

#include <sstream>
#include <stdexcept>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using testing::LogRecorder;

class LogOutputTest : public ::testing::Test {
protected:
    LogOutputTest() { mOutput.addSink(mSink); }

    void write(const std::string& message, const std::string& file = "File",
               const std::string& tag = "", const std::string& function = "function") {
        std::string whenLong;
        LogRecord record =
            LogRecord::capture(message, RootLoggerLevel::Info, 120, file, function, tag, whenLong);
        record.time = 1714555805;
        mOutput.write(record);
    }

    std::shared_ptr<LogRecorder> mSink = std::make_shared<LogRecorder>();
    LogOutput mOutput;
};

TEST_F(LogOutputTest, FormatsTheLineFromTheRecordThatItHandsOver) {
    const ScopedThreadNotifications scope("a thread", false);
    write("the message", "C:\\source/logging\\RootLogger", "a tag", "flush");
    std::ostringstream ids;
    ids << "[" << platform::processId() << ":0x" << std::hex << platform::threadId() << "]";
    const auto [line, record] = mSink->take().at(0);
    EXPECT_EQ(line, "2024-05-01T09:30:05Z <Info> " + ids.str() +
                        "[a thread]RootLogger:120 flush:a tag:the message");
    EXPECT_EQ(record.threadName + record.file + record.message, "a threadRootLoggerthe message");
}

TEST_F(LogOutputTest, WritesNoLineBreakAndNoPersonalString) {
    mOutput.addBlockedString("Jane Doe");
    write("first\n2024-05-01T09:30:05Z <Error> forged by Jane Doe");
    write("two\nlines of Jane\nDoe", "ZEL");
    EXPECT_THAT(mSink->messages(),
                ElementsAre("first\\n2024-05-01T09:30:05Z <Error> forged by ********",
                            "two lines of ********"));
}

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

TEST_F(LogOutputTest, GivesLinesOfTheEngineAndOfTheLifeCycleToTheirSinksOnceTheyHaveOne) {
    write("an engine without a sink", "ZEL");
    write("a life without a sink", "Start", "AppLifeCycle #");
    EXPECT_THAT(mSink->take().at(1).first, ::testing::EndsWith(" function::a life without a sink"));
    const auto engineSink = std::make_shared<LogRecorder>();
    const auto lifeCycleSink = std::make_shared<LogRecorder>();
    LifeCycleFunctions functions;
    functions.addFile("Start");
    functions.addFunction("Window", "open");
    mOutput.setEngineSink(engineSink);
    mOutput.setLifeCycleSink(lifeCycleSink, functions);
    write("engine", "ZEL");
    write("1", "Start", "AppLifeCycle #", "any");
    write("2", "Window", "AppLifeCycle #", "open");
    write("nowhere", "Window", "AppLifeCycle #", "paint");
    write("nowhere", "", "AppLifeCycle #", "open");
    write("ordinary", "Start", "another tag");
    mOutput.flush();
    EXPECT_THAT(engineSink->messages(), ElementsAre("engine"));
    EXPECT_THAT(lifeCycleSink->messages(), ElementsAre("1", "2"));
    EXPECT_THAT(mSink->messages(), ElementsAre("ordinary"));
    EXPECT_EQ(engineSink->flushCount() + lifeCycleSink->flushCount(), 2);
}

} // namespace
} // namespace tarn
