// `--archive-logs`, on the logs of earlier runs.

#include "e2e/LauncherFixture.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

namespace e2e {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ArchiveLogs : public LauncherFixture {
protected:
    ProcessResult archive(const std::string& destination) const {
        return runProcess(windowCommand({"--archive-logs", destination}));
    }
    static std::string unpacked(const std::string& zip, const std::string& name) {
        return tarn::testing::runProcess({{"/usr/bin/unzip", "-p", zip, name}, {}, {}}).output;
    }
};

TEST_F(ArchiveLogs, PacksTheLogsOfThisAndThePreviousRun) {
    const std::string logs = "QuorellTarn/Logs/record-converter/";
    ASSERT_TRUE(tarn::FileUtils().mkdirIfNotExistsRecursive(mData / logs));
    for (const std::string name :
         {"current_log.txt", "current_log1.txt", "last_run_current_log.txt",
          "current_log_header.txt", "foreign.txt"}) {
        mData.write(logs + name, "content of " + name + "\n");
    }
    const ProcessResult result = archive(".");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    ASSERT_THAT(filesLeft(), ElementsAre(StartsWith("logArchive_")));
    const std::string zip = mFolder / filesLeft().front();
    EXPECT_EQ(result.output, zip + "\n");
    for (const std::string name :
         {"current_log1.txt", "last_run_current_log.txt", "current_log_header.txt"}) {
        EXPECT_EQ(unpacked(zip, name), "content of " + name + "\n");
    }
    EXPECT_THAT(unpacked(zip, "current_log.txt"), StartsWith("content of current_log.txt\n"));
    EXPECT_EQ(unpacked(zip, "foreign.txt"), "");
    EXPECT_EQ(logged("Log archiving finished."), 1);
}

TEST_F(ArchiveLogs, RefusesWhatIsNoFolderOrCannotBeWritten) {
    mFolder.write("file", "kept");
    for (const std::string place : {"absent", "file"}) {
        const ProcessResult result = archive(place);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.errors, "record-converter: \"" + mFolder / place +
                                     "\" is no folder: name one that exists.\n");
    }
    ProcessResult result = archive("/proc"); // where not even root can write
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("\"/proc\" cannot be written"));
    result = runProcess(windowCommand({"--archive-logs", ".", "a.mkv", "b.mp4"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("give no recording with it"));
    EXPECT_THAT(filesLeft(), ElementsAre("file"));
    EXPECT_TRUE(logLines().empty());
}

} // namespace
} // namespace e2e
