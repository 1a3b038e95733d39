#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

TEST(Files, TryWhetherAFolderTakesFiles) {
    const testing::TemporaryFolder folder;
    EXPECT_TRUE(isFolderWritable(folder.path()));
    EXPECT_TRUE(listFolder(folder.path())->empty());
    EXPECT_FALSE(isFolderWritable(folder / "absent"));
    EXPECT_FALSE(isFolderWritable(folder.write("file", "")));
    EXPECT_FALSE(isFolderWritable(""));
}

TEST(KnownFolders, AreAbsoluteAndExist) {
    std::vector<std::string> folders = systemLibraryFolders();
    ASSERT_FALSE(folders.empty());
    folders.insert(folders.end(), {profileFolder(), temporaryFolder()});
    for (const std::string& folder : folders) {
        EXPECT_TRUE(isAbsolutePath(folder) && FileUtils().dirExists(folder)) << folder;
    }
    EXPECT_TRUE(isAbsolutePath(localApplicationDataFolder()));
    EXPECT_FALSE(localApplicationDataFolder().ends_with(pathSeparator()));
}

} // namespace
} // namespace tarn::platform
