#include "platform/Files.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tarn::platform {
namespace {

using testing::TemporaryFolder;

TEST(Files, ReachPathsBeyondTheClassicLengthLimit) {
    const TemporaryFolder folder;
    const FileUtils files;
    std::string deep = folder.path();
    while (deep.size() < 600) {
        deep = files.joinPath(deep, "Ordner-" + std::string(60, 'n') + "-会議");
    }
    ASSERT_TRUE(files.mkdirIfNotExistsRecursive(deep));
    const std::string file = files.joinPath(deep, "file.txt");
    EXPECT_TRUE(files.writeOneLine(file, "deep"));
    EXPECT_EQ(files.readFirstLine(file), "deep");
    EXPECT_TRUE(copyFileContents(file, files.joinPath(deep, "copy.txt")));
    EXPECT_TRUE(renamePath(file, files.joinPath(deep, "renamed.txt")));
    EXPECT_EQ(files.getFilesRecursive(folder.path()).size(), 2U);
}

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
