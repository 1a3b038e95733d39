// What becomes of the log when its folder or disk fails under the running program.

#include "faults/FaultFixture.h"
#include "support/FakeLibraries.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <regex>

namespace e2e {
namespace {

using tarn::testing::fakeEngineFolder;
using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

class LogFaults : public FaultFixture {
protected:
    /// The lines of the last run without what differs from run to run, and those of the logger's
    /// own worker apart: they come in among the others wherever the threads' race puts them.
    std::vector<std::string> comparableLines() const {
        static const std::regex changing(
            R"(^\S+Z|\[\d+:0x[0-9a-f]+\]|0x[0-9a-f]+|[\w/.-]*/[\w/.-]*)");
        std::vector<std::string> lines = logLines();
        for (std::string& line : lines) {
            line = std::regex_replace(line, changing, "");
        }
        std::ranges::sort(std::ranges::stable_partition(
            lines, [](const std::string& line) { return !line.contains("addBlockedString"); }));
        return lines;
    }
    Process::Start fakeRun(const std::string& rules, const std::string& script) const {
        return faulty(rules, {"--engine-folder", fakeEngineFolder("whole"),
                              mFolder.write("script.mkv", script), mDestination});
    }
};

TEST_F(LogFaults, EveryLineArrivesOnceAndInOrderWhenWritesFailForAWhile) {
    const std::string script = "progress 10\nwrite done\nprogress 100";
    ASSERT_EQ(tarn::testing::runProcess(fakeRun("", script)).status, 0);
    const std::vector<std::string> undisturbed = comparableLines();
    ASSERT_GT(undisturbed.size(), 8U);
    for (const std::string rules :
         {"write current_log.txt 1 1 5", "write current_log.txt 2 3 28",
          "write current_log.txt 1 1 short;write current_log.txt 2 3 28"}) {
        SCOPED_TRACE(rules);
        const ProcessResult result = tarn::testing::runProcess(fakeRun(rules, script));
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.errors, HasSubstr("Failed to write log file at :"));
        EXPECT_THAT(comparableLines(), ElementsAreArray(undisturbed));
    }
}

TEST_F(LogFaults, LinesOfTheTimeWithoutAFolderAreWrittenOnceThereIsOne) {
    const std::string blocked = mData.write("QuorellTarn", "a file where the folder belongs");
    Process process(fakeRun("", "progress 10\nhold"));
    ASSERT_TRUE(process.waitForOutput("10 %"));
    ASSERT_TRUE(tarn::FileUtils().remove(blocked));
    process.interrupt();
    EXPECT_EQ(process.wait(), 130);
    EXPECT_THAT(process.errors(), HasSubstr("Failed to open log file at :"));
    const std::vector<std::string> lines = logLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines.front(), HasSubstr("Setting Log level to Debug"));
    EXPECT_EQ(logged("record-converter 1."), 1);
    EXPECT_EQ(logged("The conversion is interrupted."), 1);
    EXPECT_EQ(logged("The conversion ends with status 130"), 1);
}

TEST_F(LogFaults, ALogThatCanNeverBeWrittenDoesNotHoldTheConversionUp) {
    const ProcessResult result = convert("write current_log.txt 1 0 28");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("Failed to write log file at :"));
    EXPECT_TRUE(isDestinationWhole());
}

TEST_F(LogFaults, AnEngineThatCrashesTakesNeitherRecordingNorEarlierLinesWithIt) {
    const std::string script = "progress 10\nwrite part\ncrash";
    const std::string source = mFolder.write("script.mkv", script);
    const ProcessResult result = launchFake("whole", {"--delete-sources", source, mDestination});
    EXPECT_THAT(result.status, AnyOf(128 + 6, 1)); // 1: a sanitizer has reported it
    EXPECT_EQ(tarn::testing::readFile(source), script);
    EXPECT_EQ(logged("record-converter 1."), 1);
}

TEST_F(LogFaults, NoNameOrTextFromOutsideForgesALineOrIsWrittenRaw) {
    const std::string forged =
        "x\n2024-05-01T09:30:05Z <Error> [1:0x1][]Forged:1 f::forged\r\x1B[2J";
    const std::vector<std::string> names{forged, "a|b.mkv", "a:b.mkv", "\xE2\x80\xA8.mkv",
                                         std::string(250, 'n')};
    for (const std::string& name : names) {
        const std::string source = mFolder.write(name, "write done\nprogress 100");
        const ProcessResult result = launchFake("whole", {source, mDestination});
        EXPECT_EQ(result.status, 0) << result.errors;
        tarn::FileUtils().remove(source);
        // The engine's own trace, with the whole path in it.
        const std::string broken = mFolder.write(name, "no recording");
        EXPECT_EQ(launch({broken, mDestination}).status, 1);
        const std::regex format(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ <\w+> \[\d+:0x[0-9a-f]+\].*)");
        for (const std::string& line : logLines()) {
            EXPECT_TRUE(std::regex_match(line, format)) << line;
            EXPECT_THAT(line, ::testing::Not(::testing::StartsWith("2024-")));
            for (const char byte : line) {
                EXPECT_TRUE(static_cast<unsigned char>(byte) >= 0x20 || byte == '\t') << line;
            }
            EXPECT_FALSE(line.contains("\xE2\x80\xA8"));
        }
        tarn::FileUtils().remove(broken);
    }
    for (const std::string& odd : {std::string(32000, 'a'), std::string(32000, '|'),
                                   std::string("\xFF\xC0\xED\xA0\x80"), std::string("\x01\x02")}) {
        EXPECT_EQ(launch({odd, mDestination}).status, 2);
        EXPECT_EQ(launch({"--engine-folder", odd, mSource, mDestination}).status, 2);
        EXPECT_EQ(launch({mSource, odd}).status, 2);
    }
}

} // namespace
} // namespace e2e
