// What becomes of the log when its folder or disk fails under the running program.

#include "faults/FaultFixture.h"

#include <regex>

namespace e2e {
namespace {

class LogFaults : public FaultFixture {
protected:
    Process::Start fakeRun(const std::string& rules, const std::string& script) const {
        return faulty(rules, {"--engine-folder", fakeEngineFolder("whole"),
                              mFolder.write("script.mkv", script), mDestination});
    }
    /// Runs and gives the log without what changes from run to run: times, numbers of threads, and
    /// the lines of the logger's own worker, which come wherever the threads' race puts them.
    std::vector<std::string> messages(const std::string& rules) const {
        static const std::regex changing(R"(^.*?\]\[|0x[0-9a-f]+)");
        const ProcessResult result =
            runProcess(fakeRun(rules, "progress 10\nwrite done\nprogress 100"));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors.contains("Failed to write log file at :"), !rules.empty());
        std::vector<std::string> found;
        for (const std::string& line : logLines()) {
            if (!line.contains("addBlockedString")) {
                found.push_back(std::regex_replace(line, changing, ""));
            }
        }
        return found;
    }
};

TEST_F(LogFaults, EveryLineArrivesOnceAndInOrderWhenWritesFailForAWhile) {
    const std::vector<std::string> undisturbed = messages("");
    ASSERT_GT(undisturbed.size(), 8U);
    for (const std::string rules :
         {"write current_log.txt 1 1 5", "write current_log.txt 2 3 28",
          "write current_log.txt 1 1 short;write current_log.txt 2 3 28"}) {
        EXPECT_EQ(messages(rules), undisturbed) << rules;
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
    EXPECT_THAT(result.status, ::testing::AnyOf(128 + 6, 1)); // 1: a sanitizer has reported it
    EXPECT_EQ(readFile(source), script);
    EXPECT_EQ(logged("record-converter 1."), 1);
}

TEST_F(LogFaults, NoNameFromOutsideForgesALineOrIsWrittenRaw) {
    const std::regex format(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ <\w+> \[\d+:0x[0-9a-f]+\].*)");
    for (const std::string& name :
         {std::string("x\n2024-05-01T09:30:05Z <Error> [1:0x1][]Forged:1 f::forged\r\x1B[2J"),
          std::string("a|b:c.mkv"), std::string("\xE2\x80\xA8.mkv"), std::string(250, 'n')}) {
        // The engine's own trace has the whole path in it.
        const std::string source = mFolder.write(name, "no recording");
        EXPECT_EQ(launch({source, mDestination}).status, 1);
        for (const std::string& line : logLines()) {
            EXPECT_TRUE(std::regex_match(line, format) && !line.starts_with("2024-")) << line;
            EXPECT_TRUE(std::ranges::none_of(line, [](char byte) {
                return static_cast<unsigned char>(byte) < 0x20 && byte != '\t';
            })) << line;
            EXPECT_FALSE(line.contains("\xE2\x80\xA8"));
        }
    }
}

} // namespace
} // namespace e2e
