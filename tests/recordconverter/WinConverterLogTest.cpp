#include "recordconverter/EngineFixture.h"
#include "recordconverter/WinConverterLog.h"
#include "threading/Assertion.h"

#include <gmock/gmock.h>

namespace recordconverter {
namespace {

using tarn::testing::fakeEngineFolder;
using tarn::testing::FakeLibrary;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class WinConverterLogTest : public EngineFixture {
protected:
    std::vector<std::string> engineLines() const {
        std::vector<std::string> texts;
        for (const tarn::LogComponents& record : mLog.records()) {
            if (record.file == "ZEL") {
                EXPECT_EQ(record.line, 0);
                EXPECT_EQ(record.function + record.tag, "");
                texts.push_back(record.level + " " + record.message);
            }
        }
        return texts;
    }
};

TEST_F(WinConverterLogTest, HandsTheEngineTheSameSinkEachTimeAndTakesItBackAtTheEnd) {
    const FakeLibrary client("whole", "zelclient");
    {
        WinConverterLog log;
        log.attach(fakeEngineFolder("whole"));
        EXPECT_EQ(client.calls(), "sink\nlevel 5\n");
        const auto loads = mLog.lines().size();
        log.attach(fakeEngineFolder("whole"));
        EXPECT_EQ(client.calls(), "sink\nlevel 5\nsink\nlevel 5\n");
        EXPECT_EQ(mLog.lines().size(), loads) << "the library was loaded again";
    }
    EXPECT_EQ(client.calls(), "sink\nlevel 5\nsink\nlevel 5\ndetached\n");
    EXPECT_EQ(mLog.count("FreeLibrary successfully"), 1);
}

TEST_F(WinConverterLogTest, MapsTheEnginesLevelsAndReportsAnUnknownOne) {
    std::vector<std::string> assertions;
    tarn::setAssertionDetailHandler(
        [&](const std::string&, const std::string&, std::uint32_t, const std::string& expression,
            const std::string& message) { assertions.push_back(expression + ": " + message); });
    const FakeLibrary client("whole", "zelclient");
    const auto trace =
        client.function<std::int32_t (*)(std::uint32_t, const char*)>("FakeClientTrace");
    WinConverterLog log;
    log.attach(fakeEngineFolder("whole"));
    for (const std::uint32_t level : {0U, 1U, 2U, 3U, 4U, 7U}) {
        EXPECT_EQ(trace(level, ("at " + std::to_string(level)).c_str()), 0);
    }
    trace(2, nullptr);
    tarn::setAssertionDetailHandler({});
    EXPECT_TRUE(mLog.hasError("at 0"));
    // Trace and Unknown do not pass the root logger's gate.
    EXPECT_THAT(engineLines(),
                ElementsAre("Error at 0", "Warn at 1", "Info at 2", "Debug at 3", "Info "));
    EXPECT_THAT(assertions, ElementsAre("false: Could not map ZEL log level to tarn log level"));
}

TEST_F(WinConverterLogTest, WarnsTwiceWithoutTheClientLibraryOrItsExports) {
    for (const std::string& folder : {mFolder.path(), fakeEngineFolder("no-factory")}) {
        SCOPED_TRACE(folder);
        const auto before = mLog.lines().size();
        {
            WinConverterLog log;
            log.attach(folder);
        }
        auto lines = mLog.lines();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
        EXPECT_THAT(lines, Contains(StartsWith("<Warn> ZelSetTraceSink setting error, sink:0x")));
        EXPECT_THAT(lines, Contains("<Warn> ZelSetTraceMaxLevel setting error"));
    }
    EXPECT_TRUE(mLog.hasError("Failed to load " + tarn::platform::libraryFileName("zelclient") +
                              ", errorCode: "));
}

TEST_F(WinConverterLogTest, InstallsTheHandlerThatItWasGivenAndNoneOtherwise) {
    static int installed = 0;
    WinConverterLog([] { ++installed; }).installQtMessageHandler();
    WinConverterLog().installQtMessageHandler();
    EXPECT_EQ(installed, 1);
}

} // namespace
} // namespace recordconverter
