#include "logging/FileLoggerFixture.h"
#include "support/linux/FileSizeLimit.h"

#include <filesystem>

namespace tarn {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

using testing::FileSizeLimit;

class FileLoggerFault : public testing::FileLoggerFixture {};

TEST_F(FileLoggerFault, CompletesALineThatAFullDiskCut) {
    CaptureStderr();
    const auto logger = startLogger();
    for (const rlim_t size : {250U, 260U, 299U, 1000U}) {
        const FileSizeLimit limit(size);
        logNumbered(*logger, size == 250 ? 0 : 5, size == 250 ? 5 : 0);
        logger->flush();
        expectContent("current_log.txt", numberedLines(0, 5).substr(0, size));
    }
    EXPECT_EQ(GetCapturedStderr(),
              "Failed to write log file at :" + path("current_log.txt") + "\n");
}

TEST_F(FileLoggerFault, WritesACutLineWholeIntoAnotherFile) {
    CaptureStderr();
    const auto logger = startLogger();
    {
        const FileSizeLimit limit(250);
        logNumbered(*logger, 0, 5);
        logger->flush();
    }
    GetCapturedStderr();
    ASSERT_TRUE(files->remove(path("current_log.txt")));
    logger->flush();
    expectContent("current_log.txt", numberedLines(2, 3));
}

TEST_F(FileLoggerFault, KeepsEveryLineThatADeviceRefused) {
    std::filesystem::create_symlink("/dev/full", path("current_log.txt"));
    CaptureStderr();
    const auto logger = makeLogger(kAtOnce);
    logger->start(false);
    logNumbered(*logger, 0, 3000);
    logger->flush();
    EXPECT_EQ(GetCapturedStderr(),
              "Failed to write log file at :" + path("current_log.txt") + "\n");
    ASSERT_TRUE(files->remove(path("current_log.txt")));
    logNumbered(*logger, 3000, 1);
    expectContent("current_log.txt", numberedLines(0, 3001));
}

TEST_F(FileLoggerFault, FillsTheOlderFileBeforeTheNewOneWhileSwitchingFails) {
    CaptureStderr();
    const auto logger = startLogger();
    {
        const FileSizeLimit limit(499'950);
        logNumbered(*logger, 0, 5002);
        logger->flush();
    }
    GetCapturedStderr();
    logger->flush();
    expectContent("current_log1.txt", numberedLines(0, 5000));
    expectContent("current_log.txt", numberedLines(5000, 2));
}

TEST_F(FileLoggerFault, PutsThePreviousRunAsideWhenTheFolderCanBeWrittenAgain) {
    class ReadOnlyFiles : public FileUtils {
    public:
        bool remove(const std::string& file) const override {
            return writable && FileUtils::remove(file);
        }
        bool rename(const std::string& from, const std::string& to) const override {
            return writable && FileUtils::rename(from, to);
        }
        bool writable = false;
    };
    // The current file itself cannot be opened: a link to where no file can be.
    std::filesystem::create_symlink(folder / "absent/file", path("current_log.txt"));
    const auto readOnly = std::make_shared<ReadOnlyFiles>();
    const auto logger = std::make_shared<FileLogger>(logs, 1, readOnly, nullptr, true);
    CaptureStderr();
    logger->start(true);
    GetCapturedStderr();
    log(*logger, "this run");
    readOnly->writable = true;
    ASSERT_TRUE(files->remove(path("current_log.txt")));
    folder.write("Logs/current_log.txt", "previous run\n");
    logger->flush();
    EXPECT_EQ(content("last_run_current_log.txt"), "previous run\n");
    EXPECT_EQ(content("current_log.txt"), "this run\n");
}

} // namespace
} // namespace tarn
