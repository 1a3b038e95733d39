#include "logging/FileLoggerFixture.h"
#include "logging/SessionHeader.h"
#include "logging/SettingsTable.h"
#include "support/RecordingLogHook.h"

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

class FileLoggerTest : public testing::FileLoggerFixture {};

TEST_F(FileLoggerTest, PutsThePreviousRunAside) {
    for (const std::string run : {"first", "second", "third"}) {
        const auto logger = startLogger();
        log(*logger, run + " run");
        log(*logger, "");
        logger->flush();
        EXPECT_EQ(content("current_log.txt"), run + " run\n\n");
    }
    EXPECT_EQ(content("last_run_current_log.txt"), "second run\n\n");
    // Everything that a run can leave, under the name that it has in the next one.
    const std::pair<std::string, std::string> moves[] = {
        {"current_log.txt", "last_run_current_log.txt"},
        {"current_log1.txt", "last_run_current_log1.txt"},
        {"current_log_header.txt", "last_run_current_log_header.txt"},
        {"cout_current_log.txt", "cout_last_run_current_log.txt"},
        {"cout_prev_log.txt", "cout_last_run_prev_log.txt"},
    };
    for (const auto& [from, to] : moves) {
        folder.write("Logs/" + from, from);
        folder.write("Logs/" + to, "of the run before");
    }
    const auto logger = startLogger();
    for (const auto& [from, to] : moves) {
        EXPECT_EQ(content(to), from);
        EXPECT_EQ(files->exists(path(from)), from == "current_log.txt");
    }
}

TEST_F(FileLoggerTest, ContinuesTheCurrentFileWhenNothingIsMoved) {
    folder.write("Logs/current_log.txt", numberedLines(0, 4999));
    const auto logger = startLogger(false);
    logNumbered(*logger, 4999, 2);
    logger->flush();
    expectContent("current_log1.txt", numberedLines(0, 5000));
    expectContent("current_log.txt", numberedLines(5000, 1));
}

TEST_F(FileLoggerTest, FlushesEverySecondLineOfTheProcess) {
    const auto first = startLogger();
    log(*first, "a");
    const bool firstFlushed = !content("current_log.txt").empty();
    log(*first, "b");
    EXPECT_EQ(content("current_log.txt"), firstFlushed ? "a\n" : "a\nb\n");
    // The turn passes from one logger to the next: here the third line of the process.
    SettingsTable::ofProcess().set("/logFile", "second.txt");
    const auto second = startLogger();
    SettingsTable::ofProcess().remove("/logFile");
    log(*second, "c");
    EXPECT_EQ(content("second.txt"), firstFlushed ? "c\n" : "");
    log(*first, "d");
    EXPECT_EQ(content("current_log.txt"), firstFlushed ? "a\n" : "a\nb\nd\n");
}

TEST_F(FileLoggerTest, SwitchesBeforeTheLineThatWouldPassTheLimit) {
    const auto logger = startLogger();
    logNumbered(*logger, 0, 5000);
    EXPECT_FALSE(files->exists(path("current_log1.txt")));
    logNumbered(*logger, 5000, 5000);
    logger->flush();
    expectContent("current_log1.txt", numberedLines(0, 5000));
    expectContent("current_log.txt", numberedLines(5000, 5000));
    logNumbered(*logger, 10000, 1);
    logger->flush();
    expectContent("current_log1.txt", numberedLines(5000, 5000));
    expectContent("current_log.txt", numberedLines(10000, 1));
}

TEST_F(FileLoggerTest, SavesTheSessionHeaderAtTheFirstSwitchOnly) {
    const auto logger = startLogger();
    logNumbered(*logger, 0, 5000);
    EXPECT_FALSE(files->exists(path("current_log_header.txt")));
    logNumbered(*logger, 5000, 5001);
    const std::string header = content("current_log_header.txt");
    EXPECT_EQ(header.size(), 35U + 80'003U);
    EXPECT_EQ(header,
              "... Obrix session info header ...\n\n" + numberedLines(0, 801).substr(0, 80'003));
}

TEST_F(FileLoggerTest, FillsAShortSessionHeaderWithZeroes) {
    const std::string log = folder.write("log", "short");
    saveSessionHeader(log, folder / "header");
    EXPECT_EQ(testing::readFile(folder / "header"),
              std::string(kSessionHeaderText) + "short" + std::string(79'998, '\0'));
    saveSessionHeader(folder / "absent", folder / "other");
    EXPECT_EQ(files->getFileSize(folder / "other"), 80'038);
}

TEST_F(FileLoggerTest, ClearsEveryFileOfItsOwn) {
    const auto logger = startLogger();
    for (const std::string& file :
         LogFileNames(logs + files->pathSeparator(), "current_log.txt").clearedFiles()) {
        ASSERT_TRUE(files->writeOneLine(file, "old"));
    }
    folder.write("Logs/foreign.txt", "kept");
    log(*logger, "gone");
    log(*logger, "gone");
    logger->clearLogs();
    EXPECT_THAT(files->getFiles(logs), ElementsAre("current_log.txt", "foreign.txt"));
    log(*logger, "new");
    logger->flush();
    EXPECT_EQ(content("current_log.txt"), "new\n");
}

TEST_F(FileLoggerTest, KeepsTheNewestFiveThousandLinesUntilTheFolderCanBeWritten) {
    ASSERT_TRUE(files->removeEmptyDir(logs));
    folder.write("Logs", "a file in the folder's place");
    CaptureStderr();
    const auto logger = startLogger();
    logNumbered(*logger, 0, 5001);
    EXPECT_EQ(GetCapturedStderr(), "Failed to open log file at :" + path("current_log.txt") + "\n");
    logger->flush();
    ASSERT_TRUE(files->remove(logs));
    logger->resume();
    expectContent("current_log.txt", numberedLines(1, 5000));
    logNumbered(*logger, 5001, 2);
    logger->flush();
    EXPECT_EQ(content("current_log1.txt") + content("current_log.txt"), numberedLines(1, 5002));
}

TEST_F(FileLoggerTest, ResumesByItselfWhenFlushedOrWithALineWhenTheRetryIntervalIsOver) {
    for (const auto interval : {kNever, kAtOnce}) {
        ASSERT_TRUE(files->removeNonEmptyDir(logs));
        folder.write("Logs", "");
        CaptureStderr();
        const auto logger = makeLogger(interval);
        logger->start(true);
        log(*logger, "early");
        // Retries are silent: one report for one failure.
        EXPECT_EQ(GetCapturedStderr(),
                  "Failed to open log file at :" + path("current_log.txt") + "\n");
        ASSERT_TRUE(files->remove(logs));
        log(*logger, "late");
        EXPECT_EQ(files->exists(logs), interval == kAtOnce);
        logger->flush();
        EXPECT_EQ(content("current_log.txt"), "early\nlate\n");
    }
}

TEST_F(FileLoggerTest, LosesNoLineWhenTheOlderFileCannotBeReplaced) {
    const testing::RecordingLogHook hooked;
    const auto logger = startLogger();
    files->mkdirIfNotExistsRecursive(path("current_log1.txt"));
    folder.write("Logs/current_log1.txt/in the way", "");
    CaptureStderr();
    logNumbered(*logger, 0, 9999);
    logger->flush();
    expectContent("current_log.txt", numberedLines(0, 9999));
    EXPECT_THAT(GetCapturedStderr(), ::testing::StartsWith("Failed to rename log file. "));
    EXPECT_THAT(hooked.lines(), ElementsAre(HasSubstr("Could not rename '")));
    ASSERT_TRUE(files->removeNonEmptyDir(path("current_log1.txt")));
    logNumbered(*logger, 9999, 2);
    logger->flush();
    expectContent("current_log1.txt", numberedLines(0, 10000));
    expectContent("current_log.txt", numberedLines(10000, 1));
}

TEST_F(FileLoggerTest, CopiesTheCurrentFileAsideWhenItCannotBeRenamed) {
    class UnrenamableFiles : public FileUtils {
    public:
        bool renameWithMessage(const std::string&, const std::string&,
                               std::string* reason) const override {
            *reason = "in use";
            return false;
        }
    };
    CaptureStderr();
    const auto logger =
        std::make_shared<FileLogger>(logs, 1, std::make_shared<UnrenamableFiles>(), nullptr, true);
    logger->start(true);
    logNumbered(*logger, 0, 5001);
    logger->flush();
    EXPECT_EQ(GetCapturedStderr(), "Failed to rename log file. in use\n");
    expectContent("current_log1.txt", numberedLines(0, 5000));
    expectContent("current_log.txt", numberedLines(5000, 1));
}

TEST_F(FileLoggerTest, KeepsItsHandsOffTheFileAfterClosing) {
    const auto logger = startLogger();
    log(*logger, "before");
    logger->close();
    log(*logger, "after");
    logger->flush();
    logger->resume();
    EXPECT_EQ(content("current_log.txt"), "before\n");
}

TEST_F(FileLoggerTest, DropsLinesOfAFailedFileWhenItShallNotKeepThem) {
    ASSERT_TRUE(files->removeEmptyDir(logs));
    CaptureStderr();
    const auto logger = makeLogger(kAtOnce, false);
    logger->start(true);
    GetCapturedStderr();
    logNumbered(*logger, 0, 10);
    logger->flush();
    logger->resume();
    EXPECT_FALSE(files->exists(logs));
    ASSERT_TRUE(files->mkdir(logs));
    logger->clearLogs();
    logNumbered(*logger, 10, 2);
    logger->flush();
    expectContent("current_log.txt", numberedLines(10, 2));
}

} // namespace
} // namespace tarn
