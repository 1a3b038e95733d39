#include "platform/Files.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

using testing::TemporaryFolder;

TEST(Files, TryWhetherAFolderTakesFiles) {
    const TemporaryFolder folder;
    EXPECT_TRUE(isFolderWritable(folder.path()));
    EXPECT_TRUE(listFolder(folder.path())->empty());
    EXPECT_FALSE(isFolderWritable(folder / "absent"));
    EXPECT_FALSE(isFolderWritable(folder.write("file", "")));
    EXPECT_FALSE(isFolderWritable(""));
}

TEST(KnownFolders, AreAbsoluteAndExist) {
    const FileUtils files;
    EXPECT_TRUE(isAbsolutePath(localApplicationDataFolder()));
    EXPECT_FALSE(localApplicationDataFolder().ends_with(pathSeparator()));
    for (const std::string& folder : {profileFolder(), temporaryFolder()}) {
        EXPECT_TRUE(isAbsolutePath(folder) && files.dirExists(folder)) << folder;
    }
    ASSERT_FALSE(systemLibraryFolders().empty());
    for (const std::string& folder : systemLibraryFolders()) {
        EXPECT_TRUE(isAbsolutePath(folder) && files.dirExists(folder)) << folder;
    }
    EXPECT_FALSE(isAbsolutePath("relative") || isAbsolutePath(""));
}

TEST(Identity, KnowsTheRunningProgramsOwnFile) {
    EXPECT_TRUE(FileUtils().accessible(programFile())) << programFile();
    EXPECT_TRUE(FileUtils().fileNameOfPath(programFile()).starts_with("platform_test"));
}

} // namespace
} // namespace tarn::platform
