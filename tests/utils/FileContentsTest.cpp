#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FileContents : public ::testing::Test {
protected:
    const FileUtils files{};
    const testing::TemporaryFolder folder;
};

// A fuzzing program compares the reading of lines with a plain reference.
TEST_F(FileContents, ReadsLinesOfEitherKindAndTheLastOfALongFile) {
    const std::string longest(200'000, 'x');
    const std::string file = folder.write("lines – 行", "first\r\nsecond\n\n" + longest + "\r\n");
    EXPECT_THAT(files.readAllLines(file), ElementsAre("first", "second", "", longest));
    EXPECT_EQ(files.readFirstLine(file), "first");
    EXPECT_EQ(files.readSpecifiedLine(file, 1), "second");
    EXPECT_EQ(files.readSpecifiedLine(file, 4), "");
    EXPECT_EQ(files.readLastLine(file), longest);
    EXPECT_EQ(files.readLastLine(folder.write("one", "the only line\n")), "");
}

TEST_F(FileContents, WritesLinesAndBytesAsTheyAre) {
    const std::string file = folder / "written";
    EXPECT_TRUE(files.writeOneLine(file, "alone"));
    EXPECT_EQ(testing::readFile(file), "alone\n");
    EXPECT_TRUE(files.writeAllLines(file, {"a", "", "ü"}));
    EXPECT_EQ(testing::readFile(file), "a\n\nü\n");
    std::vector<std::uint8_t> bytes(200'000, '\n');
    EXPECT_TRUE(files.writeAllBytes(file, bytes));
    EXPECT_EQ(files.readAllBytes(file), bytes);
    EXPECT_TRUE(files.canReadFirstBytes(file, bytes.size()));
    EXPECT_FALSE(files.canReadFirstBytes(file, bytes.size() + 1));
    EXPECT_TRUE(files.writeAllBytes(file, {}));
    EXPECT_EQ(files.readAllBytes(file), std::vector<std::uint8_t>());
}

TEST_F(FileContents, ReportsWhatCannotBeReadOrWritten) {
    const testing::HookedLog log;
    testing::expectErrorLine("");
    for (const std::string& path : {folder / "absent", folder.path(), std::string()}) {
        EXPECT_EQ(files.readFirstLine(path) + files.readLastLine(path), "");
        EXPECT_THAT(files.readAllLines(path), IsEmpty());
        EXPECT_EQ(files.readAllBytes(path), std::nullopt);
        EXPECT_FALSE(files.canReadFirstBytes(path, 1));
    }
    const std::string inAbsent = folder / "absent" + "/file";
    EXPECT_FALSE(files.writeOneLine(inAbsent, "x"));
    EXPECT_FALSE(files.writeAllLines(folder.path(), {"x"}));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_FALSE(files.writeAllBytes(inAbsent, {1}));
    EXPECT_THAT(log.lines(),
                ElementsAre("<Error> Could not write '" + inAbsent + "', errorCode: " +
                            (files.pathSeparator() == "/" ? "2" : "3"))); // no path, no file
}

} // namespace
} // namespace tarn
