#include "support/RecordingLogHook.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

class FileContents : public ::testing::Test {
protected:
    const FileUtils files{};
    const testing::TemporaryFolder folder;
};

TEST_F(FileContents, ReadsLinesByNumber) {
    const std::string file = folder.write("lines – 行", "first\r\nsecond\n\nlast");
    const std::vector<std::string> lines{"first", "second", "", "last"};
    EXPECT_EQ(files.readAllLines(file), lines);
    EXPECT_EQ(files.readFirstLine(file), "first");
    for (std::size_t number = 0; number < lines.size(); ++number) {
        EXPECT_EQ(files.readSpecifiedLine(file, number), lines[number]);
    }
    EXPECT_EQ(files.readSpecifiedLine(file, lines.size()), "");
}

TEST_F(FileContents, ReadsTheLastLineButNoneOfAFileOfOne) {
    const std::string longest(200'000, 'x');
    for (const auto& [content, last] : std::initializer_list<std::pair<std::string, std::string>>{
             {"one\ntwo\nthree\n", "three"},
             {"one\r\ntwo\r\n", "two"},
             {"one\nb\n", "b"},
             {"one\nlonger", "longer"},
             {"one\n" + longest + "\n", longest},
             {"\nab", "ab"},
             {"", ""},
             {"\r\n", ""},
             {"a", ""},
             {"ab\n", ""},
             {"only one", ""},
             {"only one\n", ""}}) {
        EXPECT_EQ(files.readLastLine(folder.write("file", content)), last) << content.substr(0, 99);
    }
}

TEST_F(FileContents, WritesLinesThatItReadsBack) {
    const std::string file = folder / "written";
    EXPECT_TRUE(files.writeOneLine(file, "alone"));
    EXPECT_EQ(testing::readFile(file), "alone\n");
    EXPECT_TRUE(files.writeAllLines(file, {"a", "", "ü"}));
    EXPECT_EQ(testing::readFile(file), "a\n\nü\n");
    EXPECT_THAT(files.readAllLines(file), ElementsAre("a", "", "ü"));
    EXPECT_TRUE(files.writeAllLines(file, {}));
    EXPECT_EQ(testing::readFile(file), "");
}

TEST_F(FileContents, ReadsAndWritesBytes) {
    Bytes bytes(200'000);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 7);
    }
    const std::string file = folder / "bytes";
    EXPECT_TRUE(files.writeAllBytes(file, bytes));
    EXPECT_EQ(files.readAllBytes(file), bytes);
    EXPECT_TRUE(files.canReadFirstBytes(file, bytes.size()));
    EXPECT_FALSE(files.canReadFirstBytes(file, bytes.size() + 1));
    EXPECT_TRUE(files.writeAllBytes(file, {}));
    EXPECT_EQ(files.readAllBytes(file), Bytes());
    EXPECT_TRUE(files.canReadFirstBytes(file, 0));
}

TEST_F(FileContents, ReportsWhatCannotBeReadOrWritten) {
    const testing::RecordingLogHook log;
    for (const std::string& path : {folder / "absent", folder.path(), std::string()}) {
        EXPECT_EQ(files.readFirstLine(path), "");
        EXPECT_EQ(files.readLastLine(path), "");
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
                ElementsAre("<Error> Could not write '" + inAbsent + "', errorCode: 2"));
}

} // namespace
} // namespace tarn
