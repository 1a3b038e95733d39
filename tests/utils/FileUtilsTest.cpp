#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

/// Beyond ASCII, and beyond the 16-bit plane.
const std::string kName = "Besprechung – 会議 😀";

class FileUtilsTest : public ::testing::Test {
protected:
    void makeTree() const {
        files.mkdirIfNotExistsRecursive(folder / "tree/b/c");
        folder.write("tree/one.txt", "1");
        folder.write("tree/b/two.txt", "2");
        folder.write("tree/b/c/" + kName, "3");
    }
    std::string in(const std::string& path) const {
        std::string result = folder / path;
        std::ranges::replace(result, '/', platform::pathSeparator());
        return result;
    }
    void setModified(const std::string& path, int seconds) const {
        std::filesystem::last_write_time(
            platform::nativePath(path),
            std::filesystem::file_time_type::clock::now() + std::chrono::seconds(seconds));
    }

    const FileUtils files{};
    const TemporaryFolder folder;
};

TEST_F(FileUtilsTest, TellsFilesFoldersAndAbsentPathsApart) {
    const std::string file = folder.write(kName, "content");
    int error = -1;
    EXPECT_TRUE(files.exists(file) && files.exists(file, error) && files.accessible(file));
    EXPECT_EQ(error, 0);
    EXPECT_FALSE(files.dirExists(file));
    EXPECT_TRUE(files.exists(folder.path()) && files.dirExists(folder.path()));
    EXPECT_TRUE(files.dirExists(folder.path() + platform::pathSeparator()));
    EXPECT_FALSE(files.accessible(folder.path()));
    EXPECT_EQ(files.getFileSize(folder.path()), -1);
    for (const std::string& absent : {folder / "absent", std::string(), file + '\0' + "x"}) {
        EXPECT_FALSE(files.exists(absent) || files.exists(absent, error) ||
                     files.accessible(absent) || files.dirExists(absent));
        EXPECT_EQ(error, ENOENT);
        EXPECT_EQ(files.getFileSize(absent), -1);
        EXPECT_FALSE(files.getFileDetails(absent).has_value());
    }
}

TEST_F(FileUtilsTest, RemovesFilesAndOnlyEmptyFoldersUnlessToldOtherwise) {
    int error = -1;
    EXPECT_TRUE(files.remove(folder.write(kName, ""), error));
    EXPECT_EQ(error, 0);
    EXPECT_FALSE(files.remove(folder / kName, error));
    EXPECT_EQ(error, ENOENT);
    makeTree();
    EXPECT_FALSE(files.remove(in("tree")));
    EXPECT_FALSE(files.removeEmptyDir(in("tree")));
    EXPECT_FALSE(files.removeNonEmptyDir(in("tree/one.txt")));
    EXPECT_TRUE(files.exists(in("tree/one.txt")));
    EXPECT_TRUE(files.removeNonEmptyDir(in("tree/")));
    EXPECT_FALSE(files.exists(in("tree")) || files.removeNonEmptyDir(in("tree")));
    EXPECT_TRUE(files.removeEmptyDir(folder.makeFolder("empty")));
}

TEST_F(FileUtilsTest, MakesFoldersWithTheirParents) {
    const std::string deep = in("x/" + kName + "/z/");
    EXPECT_FALSE(files.mkdir(deep));
    EXPECT_TRUE(files.mkdirIfNotExistsRecursive(deep));
    EXPECT_TRUE(files.mkdirIfNotExistsRecursive(deep) && files.mkdirIfNotExists(deep));
    EXPECT_TRUE(files.dirExists(deep));
    EXPECT_FALSE(files.mkdir(deep));
    folder.write("file", "");
    for (const std::string& refused : {in("file/below"), in("file"), std::string()}) {
        EXPECT_FALSE(files.mkdirIfNotExistsRecursive(refused));
    }
}

TEST_F(FileUtilsTest, LogsWhyARenamingFailed) {
    const testing::HookedLog log;
    testing::expectErrorLine("Could not rename");
    std::string reason;
    EXPECT_FALSE(files.renameWithMessage(folder / "a", folder / "b", &reason));
    EXPECT_FALSE(reason.empty());
    EXPECT_THAT(log.lines(), ElementsAre("<Error> Could not rename '" + folder / "a" + "' to '" +
                                         folder / "b" + "'.  errno was 2"));
    folder.write("a", "x");
    EXPECT_TRUE(files.renameWithMessage(folder / "a", folder / kName));
    EXPECT_EQ(testing::readFile(folder / kName), "x");
}

TEST_F(FileUtilsTest, CopiesAFileWithItsTimeOverOneThatDiffers) {
    const std::string source = folder.write("source", std::string(300'000, 's'));
    setModified(source, -7200);
    const std::string target = folder.write(kName, "older and different");
    EXPECT_TRUE(files.copyFile(source, target));
    EXPECT_EQ(testing::readFile(target), std::string(300'000, 's'));
    EXPECT_EQ(files.getFileDetails(target)->modified, files.getFileDetails(source)->modified);
    EXPECT_FALSE(files.copyFile(folder / "absent", target));
    EXPECT_FALSE(files.copyFileIfDifferent(folder / "absent", target));
    EXPECT_FALSE(files.copyFile(folder.path(), folder / "copy"));
    EXPECT_FALSE(files.copyFile(source, in("absent/copy")));
    setModified(source, 0);
    EXPECT_TRUE(files.copyFileIfDifferent(source, target));
    EXPECT_LT(files.getFileDetails(target)->modified, files.getFileDetails(source)->modified);
    folder.write("source", std::string(300'000, 'S'));
    EXPECT_TRUE(files.copyFileIfDifferent(source, target));
    EXPECT_EQ(testing::readFile(target), std::string(300'000, 'S'));
    EXPECT_THAT(files.getFiles(folder.path()), ElementsAre(kName, "source"));
}

TEST_F(FileUtilsTest, RecognisesASecondNameOfAFile) {
    const std::string file = folder.write("file", "x");
    const std::string other = folder.write("other", "x");
    ASSERT_TRUE(files.hardLink(file, folder / kName));
    EXPECT_TRUE(files.isSameFile(file, folder / kName));
    EXPECT_FALSE(files.isSameFile(file, other));
    EXPECT_FALSE(files.isSameFile(folder / "absent", folder / "absent"));
    EXPECT_FALSE(files.hardLink(file, other));
    EXPECT_TRUE(files.remove(file));
    EXPECT_EQ(testing::readFile(folder / kName), "x");
}

// A fuzzing program compares the reading of lines with a plain reference.
TEST_F(FileUtilsTest, ReadsAndWritesLinesAndBytesAsTheyAre) {
    const std::string longest(200'000, 'x');
    const std::string file = folder.write("lines – 行", "first\r\nsecond\n\n" + longest + "\r\n");
    EXPECT_THAT(files.readAllLines(file), ElementsAre("first", "second", "", longest));
    EXPECT_EQ(files.readSpecifiedLine(file, 1) + files.readSpecifiedLine(file, 4), "second");
    EXPECT_EQ(files.readFirstLine(file) + files.readLastLine(file), "first" + longest);
    EXPECT_TRUE(files.writeAllLines(file, {"a", "", "ü"}));
    EXPECT_EQ(testing::readFile(file), "a\n\nü\n");
    const std::vector<std::uint8_t> bytes(200'000, '\n');
    EXPECT_TRUE(files.writeAllBytes(file, bytes));
    EXPECT_EQ(files.readAllBytes(file), bytes);
    EXPECT_TRUE(files.canReadFirstBytes(file, bytes.size()));
    EXPECT_FALSE(files.canReadFirstBytes(file, bytes.size() + 1));
    const testing::HookedLog log;
    testing::expectErrorLine("Could not write");
    for (const std::string& path : {folder / "absent", folder.path(), std::string()}) {
        EXPECT_EQ(files.readFirstLine(path) + files.readLastLine(path), "");
        EXPECT_THAT(files.readAllLines(path), IsEmpty());
        EXPECT_EQ(files.readAllBytes(path), std::nullopt);
        EXPECT_FALSE(files.canReadFirstBytes(path, 1));
    }
    const std::string inAbsent = folder / "absent" + "/file";
    EXPECT_FALSE(files.writeOneLine(inAbsent, "x") || files.writeAllLines(folder.path(), {"x"}));
    EXPECT_FALSE(files.writeAllBytes(inAbsent, {1}));
    EXPECT_THAT(log.lines(),
                ElementsAre("<Error> Could not write '" + inAbsent + "', errorCode: " +
                            (files.pathSeparator() == "/" ? "2" : "3"))); // no path, no file
}

// What the client framework has beside that, and this program never calls.
TEST_F(FileUtilsTest, ListsSortsCopiesMovesAndDeletesTrees) {
    makeTree();
    EXPECT_THAT(files.getDirsRecursive(in("tree")), ElementsAre(in("tree/b"), in("tree/b/c")));
    EXPECT_THAT(files.getFilesRecursive(in("tree")),
                ElementsAre(in("tree/b/c/" + kName), in("tree/b/two.txt"), in("tree/one.txt")));
    EXPECT_TRUE(files.copyDirectory(in("tree/"), in("copies/copy")));
    EXPECT_EQ(testing::readFile(in("copies/copy/b/c/" + kName)), "3");
    EXPECT_FALSE(files.copyDirectory(in("tree"), in("tree/b/inside")));
    EXPECT_FALSE(files.moveDirectory(in("tree"), in("copies")));
    EXPECT_TRUE(files.moveDirectory(in("tree"), in("moved/")));
    EXPECT_EQ(testing::readFile(in("moved/b/two.txt")), "2");
    EXPECT_FALSE(files.exists(in("tree")));
    for (const auto& [name, seconds] :
         {std::pair{"a.log", -10}, {"ab.log", -30}, {"[a].log", -20}}) {
        setModified(folder.write(name, "1234567"), seconds);
    }
    EXPECT_THAT(files.getFilesSortedByDate(folder.path(), true),
                ElementsAre(folder / "ab.log", folder / "[a].log", folder / "a.log"));
    EXPECT_THAT(files.getFilesSortedByDate(folder.path(), false),
                ElementsAre(folder / "a.log", folder / "[a].log", folder / "ab.log"));
    EXPECT_EQ(files.getFileDetails(folder / "a.log")->size, 7U);
    EXPECT_GT(files.getFileDetails(folder / "a.log")->modified, 17'000'000'000'000'000) << "1970";
    folder.makeFolder("b.log");
    EXPECT_TRUE(files.deleteAllFiles(folder.path(), "?.log"));
    EXPECT_THAT(files.getFiles(folder.path()), ElementsAre("[a].log", "ab.log"));
    EXPECT_TRUE(files.dirExists(folder / "b.log"));
    EXPECT_FALSE(files.deleteAllFiles(folder / "absent", "*"));
}

TEST_F(FileUtilsTest, NumbersADownloadUntilItsNameIsFree) {
    const std::string prefix = folder.path() + platform::pathSeparator();
    const std::string name = "a_b_01234567-0123-0123-0123-0123456789ab.mp4";
    for (const std::string next : {"a_b.mp4", "a_b(1).mp4", "a_b(2).mp4"}) {
        EXPECT_EQ(files.getUniqueDownloadPath(prefix, name, true), prefix + next);
        folder.write(next, "");
    }
}

} // namespace
} // namespace tarn
