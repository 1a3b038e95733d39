#include "logging/FileLoggerFixture.h"
#include "logging/LogArchive.h"
#include "logging/ZipWriter.h"
#include "support/linux/FileSizeLimit.h"

namespace tarn {
namespace {

class LogArchiveFault : public testing::FileLoggerFixture {};

TEST_F(LogArchiveFault, LeavesNoArchiveWhenTheDiskIsFull) {
    const std::string destination = folder.makeFolder("destination");
    const LogArchive::Files list{{"a", folder.write("a", noise(600'000))},
                                 {"b", folder.write("b", noise(600'000))}};
    const LogArchive archive(files, destination);
    for (const rlim_t bytes : {0U, 10U, 300'000U, 900'000U, 1'200'100U}) {
        archive.collect(list);
        const testing::FileSizeLimit limit(bytes);
        EXPECT_FALSE(archive.write().succeeded()) << bytes;
        EXPECT_THAT(files->getFilesRecursive(destination), ::testing::IsEmpty()) << bytes;
    }
}

} // namespace
} // namespace tarn
