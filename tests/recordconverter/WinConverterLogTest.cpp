#include "logging/RootLogger.h"
#include "recordconverter/WinConverterLog.h"
#include "support/FakeLibraries.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "threading/Assertion.h"

#include <gmock/gmock.h>

namespace recordconverter {
namespace {

using tarn::testing::expectErrorLine;
using tarn::testing::fakeEngineFolder;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class WinConverterLogTest : public ::testing::Test {
protected:
    const tarn::testing::FakeLibrary client{"whole", "zelclient"};
    const tarn::testing::HookedLog log;
};

TEST_F(WinConverterLogTest, HandsTheEngineTheSameSinkEachTimeAndTakesItBackAtTheEnd) {
    {
        WinConverterLog bridge;
        bridge.attach(fakeEngineFolder("whole"));
        const auto loads = log.lines().size();
        bridge.attach(fakeEngineFolder("whole"));
        EXPECT_EQ(client.calls(), "sink\nlevel 5\nsink\nlevel 5\n");
        EXPECT_EQ(log.lines().size(), loads) << "the library was loaded again";
    }
    EXPECT_EQ(client.calls(), "sink\nlevel 5\nsink\nlevel 5\ndetached\n");
    EXPECT_EQ(log.lines().back(), "<Info> FreeLibrary successfully");
}

TEST_F(WinConverterLogTest, MapsTheEnginesLevelsAndReportsAnUnknownOne) {
    // The root logger keeps its sinks for ever.
    const auto sink = std::make_shared<tarn::testing::LogRecorder>();
    tarn::RootLogger::getInstance().registerLogger(sink);
    tarn::RootLogger::getInstance().flush();
    std::vector<std::string> assertions;
    tarn::setAssertionDetailHandler(
        [&](const std::string&, const std::string&, std::uint32_t, const std::string& expression,
            const std::string& message) { assertions.push_back(expression + ": " + message); });
    const auto trace =
        client.function<std::int32_t (*)(std::uint32_t, const char*)>("FakeClientTrace");
    WinConverterLog bridge;
    bridge.attach(fakeEngineFolder("whole"));
    expectErrorLine("at 0");
    for (const std::uint32_t level : {0U, 1U, 2U, 3U, 4U, 7U}) {
        EXPECT_EQ(trace(level, ("at " + std::to_string(level)).c_str()), 0);
    }
    trace(2, nullptr);
    tarn::setAssertionDetailHandler({});
    tarn::RootLogger::getInstance().flush();
    std::vector<std::string> lines;
    for (const auto& [line, record] : sink->take()) {
        if (record.file == "ZEL") {
            EXPECT_EQ(record.line, 0);
            EXPECT_EQ(record.function + record.tag, "");
            lines.push_back(record.level + " " + record.message);
        }
    }
    // Trace and Unknown do not pass the root logger's gate.
    EXPECT_THAT(lines, ElementsAre("Error at 0", "Warn at 1", "Info at 2", "Debug at 3", "Info "));
    EXPECT_THAT(assertions, ElementsAre("false: Could not map ZEL log level to tarn log level"));
}

TEST_F(WinConverterLogTest, WarnsTwiceWithoutTheClientLibraryOrItsExports) {
    expectErrorLine("Failed to load ");
    const tarn::testing::TemporaryFolder empty;
    for (const std::string& folder : {empty.path(), fakeEngineFolder("no-factory")}) {
        log.take();
        WinConverterLog().attach(folder);
        EXPECT_THAT(log.lines(),
                    Contains(StartsWith("<Warn> ZelSetTraceSink setting error, sink:0x")));
        EXPECT_THAT(log.lines(), Contains("<Warn> ZelSetTraceMaxLevel setting error"));
    }
}

} // namespace
} // namespace recordconverter
