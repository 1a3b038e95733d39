// `--archive-logs`, on the logs of earlier runs.

#include "e2e/LauncherFixture.h"

namespace e2e {
namespace {

class ArchiveLogs : public LauncherFixture {};

TEST_F(ArchiveLogs, PacksTheLogsOfThisAndThePreviousRun) {
    const std::string logs = "QuorellTarn/Logs/record-converter/";
    ASSERT_TRUE(tarn::FileUtils().mkdirIfNotExistsRecursive(mData / logs));
    const std::vector<std::string> names{"current_log.txt", "current_log1.txt",
                                         "last_run_current_log.txt", "current_log_header.txt"};
    for (const std::string& name : names) {
        mData.write(logs + name, "content of " + name + "\n");
    }
    mData.write(logs + "foreign.txt", "not packed");
    const ProcessResult result = runProcess(windowCommand({"--archive-logs", "."}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    ASSERT_THAT(filesLeft(), ElementsAre(StartsWith("logArchive_")));
    const std::string zip = mFolder / filesLeft().front();
    EXPECT_EQ(result.output, zip + "\n");
    const auto unpacked = [&zip](const std::string& name) {
        return runProcess({{"/usr/bin/unzip", "-p", zip, name}, {}, {}}).output;
    };
    for (const std::string& name : names) {
        EXPECT_THAT(unpacked(name), StartsWith("content of " + name + "\n"));
    }
    EXPECT_EQ(unpacked("foreign.txt"), "");
}

TEST_F(ArchiveLogs, RefusesWhatIsNoFolderOrCannotBeWritten) {
    mFolder.write("file", "kept");
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"absent"}, "is no folder: name one that exists."},
        {{"file"}, "is no folder: name one that exists."},
        {{"/proc"}, "\"/proc\" cannot be written"}, // not even by root
        {{".", "a.mkv", "b.mp4"}, "give no recording with it"},
    };
    for (auto [arguments, told] : cases) {
        arguments.insert(arguments.begin(), "--archive-logs");
        const ProcessResult result = runProcess(windowCommand(arguments));
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.errors, HasSubstr(told));
    }
    EXPECT_THAT(filesLeft(), ElementsAre("file"));
}

} // namespace
} // namespace e2e
