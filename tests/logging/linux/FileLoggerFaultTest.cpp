#include "logging/FileLoggerFixture.h"
#include "support/linux/FileSizeLimit.h"

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
    const auto logger = startLogger();
    {
        const FileSizeLimit limit(499'950);
        logNumbered(*logger, 0, 5002);
        logger->flush();
    }
    logger->flush();
    expectContent("current_log1.txt", numberedLines(0, 5000));
    expectContent("current_log.txt", numberedLines(5000, 2));
}

} // namespace
} // namespace tarn
