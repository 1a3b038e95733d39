#include "platform/KnownFolders.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(FileNames, SplitsPathsAtEitherSeparator) {
    const FileUtils files{};
    EXPECT_EQ(files.directoryOfPath("C:/x\\y/z.mp4"), "C:/x\\y/");
    EXPECT_EQ(files.directoryOfPath("C:/x/y\\z.mp4"), "C:/x/y\\");
    EXPECT_EQ(files.directoryOfPath("z.mp4"), "");
    EXPECT_EQ(files.fileNameOfPath("C:/x\\y/z.mp4"), "z.mp4");
    EXPECT_EQ(files.fileNameOfPath("folder/"), "");
    EXPECT_EQ(files.extensionOfPath("a.b/.c"), "");
    EXPECT_EQ(files.extensionOfPath("a.b/c"), "");
    EXPECT_EQ(files.extensionOfPath("a.b/c."), ".");
    EXPECT_EQ(files.extensionOfPath("a.b/c.tar.gz"), ".gz");
}

TEST(FileNames, JoinWithExactlyOneSeparatorAndFindParentsUpToTheRoot) {
    const std::string s(1, platform::pathSeparator());
    for (const std::string& folder : {"a" + s, "a" + s + s}) {
        EXPECT_EQ(fileNames::join(folder, s + "b"), "a" + s + "b");
    }
    EXPECT_EQ(fileNames::join("a", "b"), "a" + s + "b");
    EXPECT_EQ(fileNames::join("", "b"), "b");
    EXPECT_EQ(fileNames::join(s, "b"), s + "b");
    const std::string root = s == "\\" ? "C:\\" : "/";
    EXPECT_EQ(fileNames::parentOf(root + "a" + s + s + "b" + s), root + "a");
    EXPECT_EQ(fileNames::parentOf(root + "a"), root);
    EXPECT_EQ(fileNames::parentOf(root) + fileNames::parentOf("a"), "");
    EXPECT_EQ(fileNames::withoutTrailingSeparators(root + s), root);
}

} // namespace
} // namespace tarn
