#include "logging/FileLoggerFixture.h"
#include "logging/archive/LogArchive.h"
#include "support/linux/FileSizeLimit.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

class LogArchiveFault : public testing::FileLoggerFixture {
protected:
    const std::string destination = folder.makeFolder("destination");
};

TEST_F(LogArchiveFault, LeavesNoArchiveWhenTheDiskIsFull) {
    const LogArchive::Files list{{"a", folder.write("a", noise(600'000))},
                                 {"b", folder.write("b", noise(600'000))}};
    for (const rlim_t bytes : {0U, 10U, 300'000U, 900'000U, 1'200'100U}) {
        LogArchive archive(files, destination);
        archive.collect(list);
        const testing::FileSizeLimit limit(bytes);
        EXPECT_FALSE(archive.write().succeeded()) << bytes;
        EXPECT_THAT(files->getFilesRecursive(destination), ::testing::IsEmpty()) << bytes;
    }
}

/// Another user's folder, where nobody can remove what others have put there.
TEST_F(LogArchiveFault, NeitherFollowsNorRemovesWhatAnotherUserHasPutInItsWay) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the administrator can be two users";
    }
    const std::string log = folder.write("log", "a line");
    const std::string behind = folder.makeFolder("behind");
    const std::string letter = folder.write("behind/letter", "a secret");
    const std::string link = files->joinPath(destination, "logArchive");
    std::filesystem::create_directory_symlink(behind, link);
    for (const std::string& path : {folder.path(), behind, log, letter}) {
        chmod(path.c_str(), 0777);
    }
    chmod(destination.c_str(), 01777);
    ASSERT_EQ(seteuid(65534), 0);
    const bool isRemoved = files->removeNonEmptyDir(link);
    LogArchive archive(files, destination);
    archive.collect({{"log", log}});
    const ZipResult result = archive.write();
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_FALSE(isRemoved);
    EXPECT_EQ(testing::readFile(letter), "a secret");
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    ASSERT_TRUE(result.succeeded());
    EXPECT_EQ(std::filesystem::status(result.text).permissions(), std::filesystem::perms(0600));
    EXPECT_FALSE(testing::readFile(result.text).contains("letter"));
}

} // namespace
} // namespace tarn
