#include "client/SettingsTable.h"
#include "logging/FileLoggerFixture.h"
#include "support/linux/FileSizeLimit.h"

#include <filesystem>
#include <sys/stat.h>

namespace tarn {
namespace {

using testing::FileSizeLimit;

class FileLoggerFault : public testing::FileLoggerFixture {};

TEST_F(FileLoggerFault, CompletesALineThatAFullDiskCutOrWritesItWholeIntoAnotherFile) {
    for (const bool isRemoved : {false, true}) {
        ::testing::internal::CaptureStderr();
        const auto logger = startLogger();
        for (const rlim_t size : {250U, 260U, 299U}) {
            const FileSizeLimit limit(size);
            logNumbered(*logger, 0, size == 250 ? 5 : 0);
            logger->flush();
            expectContent("current_log.txt", numberedLines(0, 5).substr(0, size));
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "Failed to write log file at :" + path("current_log.txt") + "\n");
        ASSERT_TRUE(!isRemoved || files->remove(path("current_log.txt")));
        logger->flush();
        expectContent("current_log.txt", isRemoved ? numberedLines(2, 3) : numberedLines(0, 5));
    }
}

TEST_F(FileLoggerFault, FillsTheOlderFileBeforeTheNewOneWhileSwitchingFails) {
    // The limit is met by a line of the program or by one of those that were kept, and just before
    // it the flush of every second line takes what is written, or leaves it to the switch.
    for (const int count : {4998, 4999, 5002}) {
        const auto logger = startLogger();
        {
            const FileSizeLimit limit(static_cast<rlim_t>(std::min(count * 100, 499'950)));
            logNumbered(*logger, 0, 5002);
            logger->flush();
        }
        {
            const FileSizeLimit limit(499'950);
            logger->flush();
        }
        logger->flush();
        expectContent("current_log1.txt", numberedLines(0, 5000));
        expectContent("current_log.txt", numberedLines(5000, 2));
    }
}

TEST_F(FileLoggerFault, OpensNeitherAPipeNorADevice) {
    ASSERT_EQ(mkfifo(path("current_log.txt").c_str(), 0600), 0);
    for (const std::string name : {"current_log.txt", "device.txt"}) {
        SettingsTable::ofProcess().set("/logFile", name);
        ::testing::internal::CaptureStderr();
        std::filesystem::create_symlink("/dev/full", path("device.txt"));
        const auto logger = startLogger(false);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "Failed to open log file at :" + path(name) + "\n");
        std::filesystem::remove(path("device.txt"));
        log(*logger, "kept");
        files->remove(path(name));
        logger->flush();
        EXPECT_EQ(content(name), "kept\n");
    }
    SettingsTable::ofProcess().remove("/logFile");
}

} // namespace
} // namespace tarn
