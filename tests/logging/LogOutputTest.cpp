#include "logging/LogOutput.h"
#include "platform/Identity.h"
#include "support/FatalLogSink.h"
#include "threading/ScopedThreadNotifications.h"

#include <gmock/gmock.h>

#include <memory>
#include <sstream>
#include <stdexcept>

namespace tarn {
namespace {

using ::testing::ElementsAre;

class LogOutputTest : public ::testing::Test {
protected:
    LogOutputTest() { mOutput.addSink(mSink); }

    void write(const std::string& message, const std::string& file = "File",
               const std::string& tag = "", const std::string& function = "function") {
        LogRecord record;
        record.capture(message, RootLoggerLevel::Info, 120, file, function, tag);
        record.time = 1714555805;
        mOutput.write(record);
    }

    std::shared_ptr<testing::FatalLogSink> mSink = std::make_shared<testing::FatalLogSink>();
    LogOutput mOutput;
};

class ThrowingSink : public ILogger {
public:
    void log(const std::string& /*line*/, const LogComponents& /*components*/) override { fail(); }
    void clearLogs() override {}
    void close() override {}
    void flush() override { fail(); }

private:
    static void fail() { throw std::runtime_error("disk on fire"); }
};

std::string ids() {
    std::ostringstream text;
    text << "[" << platform::processId() << ":0x" << std::hex << platform::threadId() << "]";
    return text.str();
}

TEST_F(LogOutputTest, FormatsTheLineFromTheRecordThatItHandsOver) {
    const ScopedThreadNotifications scope("a thread", false);
    write("the message", "C:\\source/logging\\RootLogger", "a tag", "flush");
    const auto written = mSink->take();
    ASSERT_EQ(written.size(), 1U);
    const auto& [line, record] = written.front();
    EXPECT_EQ(line, "2024-05-01T09:30:05Z <Info> " + ids() +
                        "[a thread]RootLogger:120 flush:a tag:the message");
    EXPECT_EQ(ids(), "[" + record.processId + ":" + record.threadId + "]");
    EXPECT_THAT((std::vector{record.timestamp, record.level, record.threadName, record.file,
                             record.function, record.message, record.tag}),
                ElementsAre("2024-05-01T09:30:05Z", "Info", "a thread", "RootLogger", "flush",
                            "the message", "a tag"));
    EXPECT_EQ(record.line, 120);
}

TEST_F(LogOutputTest, WritesNoLineBreakAndNoPersonalString) {
    mOutput.addBlockedString("Jane Doe");
    write("first\n2024-05-01T09:30:05Z <Error> forged by Jane Doe");
    write("two\nlines of Jane\nDoe", "ZEL");
    EXPECT_THAT(mSink->messages(),
                ElementsAre("first\\n2024-05-01T09:30:05Z <Error> forged by ********",
                            "two lines of ********"));
}

TEST_F(LogOutputTest, GivesEachLineToEverySinkInOrderAndEachSinkOnce) {
    const auto second = std::make_shared<testing::FatalLogSink>();
    EXPECT_TRUE(mOutput.addSink(second));
    EXPECT_FALSE(mOutput.addSink(mSink));
    EXPECT_EQ(mOutput.sinkCount(), 2U);
    write("message");
    mOutput.flush();
    EXPECT_THAT(mSink->messages(), ElementsAre("message"));
    EXPECT_THAT(second->messages(), ElementsAre("message"));
    EXPECT_EQ(mSink->flushCount() + second->flushCount(), 2);
}

TEST_F(LogOutputTest, GivesTheEnginesLinesToItsOwnSinkOnly) {
    write("before", "ZEL");
    const auto engineSink = std::make_shared<testing::FatalLogSink>();
    mOutput.setEngineSink(engineSink);
    write("from the engine", "ZEL");
    write("from us");
    mOutput.flush();
    EXPECT_THAT(engineSink->messages(), ElementsAre("from the engine"));
    EXPECT_THAT(mSink->messages(), ElementsAre("before", "from us"));
    EXPECT_EQ(engineSink->flushCount(), 1);
}

TEST_F(LogOutputTest, GivesLifeCycleRecordsToTheirSinkWhenTheirFunctionCounts) {
    write("no sink yet", "Start", "AppLifeCycle #", "any");
    EXPECT_THAT(mSink->lines(), ElementsAre(::testing::EndsWith("Start:120 any::no sink yet")));
    mSink->take();
    const auto lifeCycleSink = std::make_shared<testing::FatalLogSink>();
    LifeCycleFunctions functions;
    functions.addFile("Start");
    functions.addFunction("Window", "open");
    mOutput.setLifeCycleSink(lifeCycleSink, functions);
    write("1", "Start", "AppLifeCycle #", "any");
    write("2", "Window", "AppLifeCycle #", "open");
    write("nowhere", "Window", "AppLifeCycle #", "paint");
    write("nowhere", "", "AppLifeCycle #", "open");
    write("ordinary", "Start", "another tag");
    mOutput.flush();
    EXPECT_THAT(lifeCycleSink->messages(), ElementsAre("1", "2"));
    EXPECT_THAT(mSink->messages(), ElementsAre("ordinary"));
    EXPECT_EQ(lifeCycleSink->flushCount(), 1);
}

TEST_F(LogOutputTest, KeepsAThrowingSinkFromTheOthers) {
    mOutput.addSink(std::make_shared<ThrowingSink>());
    const auto last = std::make_shared<testing::FatalLogSink>();
    mOutput.addSink(last);
    write("message");
    mOutput.flush();
    EXPECT_THAT(last->messages(), ElementsAre("message"));
    EXPECT_EQ(last->flushCount(), 1);
}

} // namespace
} // namespace tarn
