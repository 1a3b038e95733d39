#include "client/SettingsTable.h"
#include "logging/FileLoggerFixture.h"

namespace tarn {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

class FileLoggerTest : public testing::FileLoggerFixture {};

TEST_F(FileLoggerTest, PutsThePreviousRunAsideAndClearsEveryFileOfItsOwn) {
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
    for (const std::string name :
         {"current_log1.txt", "current_log_header.txt", "cout_current_log.txt", "cout_prev_log.txt",
          "prev_log.txt", "last_run_prev_log.txt", "foreign.txt"}) {
        folder.write("Logs/" + name, "");
    }
    logNumbered(*logger, 0, 2);
    logger->clearLogs();
    EXPECT_THAT(files->getFiles(logs),
                ::testing::ElementsAre("current_log.lock", "current_log.txt", "foreign.txt"));
    log(*logger, "new");
    logger->close();
    log(*logger, "too late");
    logger->flush();
    EXPECT_EQ(content("current_log.txt"), "new\n");
}

TEST_F(FileLoggerTest, SwitchesBeforeTheLineThatWouldPassTheLimitAndSavesTheHeaderOnce) {
    folder.write("Logs/current_log.txt", numberedLines(0, 4999));
    auto logger = startLogger(false);
    logNumbered(*logger, 4999, 1);
    logger->flush();
    expectContent("current_log.txt", numberedLines(0, 5000));
    EXPECT_FALSE(files->exists(path("current_log_header.txt")));
    logNumbered(*logger, 5000, 5001);
    logger.reset(); // the last line's turn to be flushed has not come
    expectContent("current_log1.txt", numberedLines(5000, 5000));
    expectContent("current_log.txt", numberedLines(10000, 1));
    expectContent("current_log_header.txt", "... Obrix session info header ...\n\n" +
                                                numberedLines(0, 801).substr(0, 80'003));
}

TEST_F(FileLoggerTest, FlushesEverySecondLineOfTheProcess) {
    const auto first = startLogger();
    log(*first, "a");
    const bool isFlushed = !content("current_log.txt").empty();
    log(*first, "b");
    EXPECT_EQ(content("current_log.txt"), isFlushed ? "a\n" : "a\nb\n");
    // The turn passes from one logger to the next, and may always come to the first.
    SettingsTable::ofProcess().set("/logFile", "second.txt");
    const auto second = startLogger();
    SettingsTable::ofProcess().remove("/logFile");
    log(*second, "c");
    EXPECT_EQ(content("second.txt"), isFlushed ? "c\n" : "");
    log(*first, "d");
    for (int number = 0; number < 2000; ++number) {
        log(isFlushed ? *first : *second, "takes the turn");
        logNumbered(isFlushed ? *second : *first, 0, 1);
    }
    EXPECT_GE(files->getFileSize(path(isFlushed ? "second.txt" : "current_log.txt")), 130'000);
}

TEST_F(FileLoggerTest, GivesEachOfSeveralRunsFilesOfItsOwnAndLosesNoLine) {
    folder.write("Logs/current_log.txt", "the run before");
    std::vector<std::shared_ptr<FileLogger>> runs;
    for (const std::string prefix : {"", "run2_", "run3_"}) {
        runs.push_back(startLogger(prefix != "run2_"));
        log(*runs.back(), "first of " + prefix);
        runs.back()->flush();
        EXPECT_EQ(content(prefix + "current_log.txt"), "first of " + prefix + "\n");
    }
    log(*runs[0], "second");
    logNumbered(*runs[1], 0, 5001);
    runs[1].reset(); // its files are free: the next run puts them aside
    log(*startLogger(), "the next run");
    runs[0]->flush();
    EXPECT_EQ(content("current_log.txt"), "first of \nsecond\n");
    EXPECT_EQ(content("last_run_current_log.txt"), "the run before");
    EXPECT_EQ(content("run2_current_log.txt"), "the next run\n");
    EXPECT_EQ(content("run2_last_run_current_log.txt"), numberedLines(4999, 2));
    std::string names;
    for (const std::string& file : existingLogFiles(*files, logs, "current_log.txt")) {
        EXPECT_TRUE(files->exists(file));
        names += files->fileNameOfPath(file) + " ";
    }
    EXPECT_EQ(names,
              "current_log.txt last_run_current_log.txt run2_current_log.txt "
              "run2_last_run_current_log.txt run2_last_run_current_log1.txt "
              "run2_last_run_current_log_header.txt run3_current_log.txt ");
}

TEST_F(FileLoggerTest, KeepsTheNewestFiveThousandLinesUntilTheFolderCanBeWritten) {
    for (const int hours : {24, 0}) {
        // Its folder is away, say on a drive: what the previous run left must survive, too.
        const std::string previousRun = "previous run " + std::to_string(hours);
        folder.write("Logs/current_log.txt", previousRun);
        folder.write("Logs/current_log1.txt", previousRun + ", older");
        ASSERT_TRUE(files->moveDirectory(logs, folder / "away"));
        folder.write("Logs", "a file in the folder's place");
        CaptureStderr();
        const auto logger = startLogger();
        logger->setRetryInterval(std::chrono::hours(hours));
        logNumbered(*logger, 0, 5001);
        logger->flush();
        // Retries are silent: one report for one failure.
        EXPECT_EQ(GetCapturedStderr(),
                  "Failed to open log file at :" + path("current_log.txt") + "\n");
        ASSERT_TRUE(files->remove(logs) && files->moveDirectory(folder / "away", logs));
        log(*logger, numbered(5001));
        EXPECT_EQ(content("current_log.txt") == previousRun, hours != 0);
        logger->flush();
        expectContent("current_log.txt", numberedLines(2, 5000));
        EXPECT_EQ(content("last_run_current_log.txt"), previousRun);
        EXPECT_EQ(content("last_run_current_log1.txt"), previousRun + ", older");
    }
}

TEST_F(FileLoggerTest, CopiesTheCurrentFileAsideWhenItCannotBeRenamedAndElseLetsItGrow) {
    class UnrenamableFiles : public FileUtils {
    public:
        bool rename(const std::string&, const std::string&) const override { return false; }
        bool renameWithMessage(const std::string&, const std::string&,
                               std::string* reason) const override {
            *reason = "in use";
            return false;
        }
        bool copyFile(const std::string& from, const std::string& to) const override {
            return canCopy && FileUtils::copyFile(from, to);
        }
        bool canCopy = false;
    };
    const auto unrenamable = std::make_shared<UnrenamableFiles>();
    CaptureStderr();
    folder.write("Logs/current_log.txt", "the run before\n");
    startLogger(true, unrenamable);
    EXPECT_EQ(content("current_log.txt"), "the run before\n");
    const auto logger = startLogger(false, unrenamable);
    logger->clearLogs();
    logNumbered(*logger, 0, 10000);
    logger->flush();
    expectContent("current_log.txt", numberedLines(0, 10000));
    unrenamable->canCopy = true;
    logNumbered(*logger, 10000, 1);
    logger->flush();
    expectContent("current_log1.txt", numberedLines(0, 10000));
    expectContent("current_log.txt", numberedLines(10000, 1));
    unrenamable->canCopy = false;
    logNumbered(*logger, 0, 5000);
    logger->clearLogs();
    unrenamable->canCopy = true;
    logNumbered(*logger, 0, 5001);
    expectContent("current_log1.txt", numberedLines(0, 5000));
    const std::string report = "Failed to rename log file. in use\n";
    EXPECT_EQ(GetCapturedStderr(), report + report + report + report);
}

} // namespace
} // namespace tarn
