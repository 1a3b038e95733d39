#include "platform/KnownFolders.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

/// Beyond ASCII, and beyond the 16-bit plane.
const std::string kName = "Besprechung – 会議 😀";

class FileUtilsTest : public ::testing::Test {
protected:
    std::string in(const std::string& path) const {
        std::string result = folder / path;
        std::ranges::replace(result, '/', platform::pathSeparator());
        return result;
    }

    const FileUtils files{};
    const TemporaryFolder folder;
};

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

} // namespace
} // namespace tarn
