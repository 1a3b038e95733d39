#include "logging/FileLoggerFixture.h"
#include "logging/LogArchive.h"
#include "logging/ZipWriter.h"
#include "platform/Files.h"
#include "support/RecordingLogHook.h"
#include "support/linux/FileSizeLimit.h"

#include <sys/stat.h>

namespace tarn {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class LogArchiveFault : public testing::FileLoggerFixture {
protected:
    const testing::RecordingLogHook log;
};

TEST_F(LogArchiveFault, LeavesNoArchiveWhenTheDiskIsFull) {
    const std::string destination = folder.makeFolder("destination");
    LogArchive::Files list;
    for (const std::string name : {"a", "b", "c"}) {
        list.emplace_back(name, folder.write(name, noise(400'000)));
    }
    const LogArchive archive(files, destination);
    archive.collect(list);
    for (const rlim_t bytes : {0U, 10U, 300'000U, 900'000U, 1'200'100U}) {
        ASSERT_TRUE(files->mkdirIfNotExists(destination + "/logArchive"));
        for (const auto& [name, path] : list) {
            ASSERT_TRUE(files->copyFile(path, destination + "/logArchive/" + name));
        }
        const testing::FileSizeLimit limit(bytes);
        EXPECT_FALSE(archive.write().succeeded()) << bytes;
        EXPECT_THAT(files->getFilesRecursive(destination), IsEmpty()) << bytes;
    }
}

TEST_F(LogArchiveFault, ReportsAFileThatCannotBeReadAndTakesTheRest) {
    const std::string root = folder.makeFolder("root");
    folder.write("root/good.txt", "good");
    ASSERT_EQ(symlink((folder / "absent").c_str(), (folder / "root/bad.txt").c_str()), 0);
    EXPECT_TRUE(zipFolder(root, folder / "out.zip", true).succeeded());
    EXPECT_THAT(log.lines(), Contains(StartsWith("<Error> Failed to open: " + root + "/bad.txt")));
    EXPECT_THAT(log.lines(), Contains("<Debug> Finished writing zip file, added 1 files."));
}

} // namespace
} // namespace tarn
