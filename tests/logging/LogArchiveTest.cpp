#include "logging/FileLoggerFixture.h"
#include "logging/archive/LogArchive.h"
#include "logging/archive/ZipEntryNames.h"
#include "support/LogRecorder.h"

namespace tarn {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class LogArchiveTest : public testing::FileLoggerFixture {
protected:
    LogArchiveTest() { testing::expectErrorLine(""); }
    LogArchive::Files makeLogs() const {
        return {{"a.txt", folder.write("Logs/a.txt", "a")},
                {"b.txt", folder.write("Logs/b.txt", "b")}};
    }
    std::string put(const std::string& name) const {
        const std::string file = files->joinPath(destination, name);
        EXPECT_TRUE(files->writeOneLine(file, "not ours"));
        return file;
    }
    std::string onlyFile() const {
        const auto names = files->getFilesRecursive(destination);
        EXPECT_EQ(names.size(), 1U);
        return names.empty() ? "" : names[0];
    }
    void archive(const LogArchive::Files& list, const FileLogger::ArchiveExecutor& executor = {},
                 const std::string& place = {}) const {
        std::make_shared<FileLogger>(logs, 1, files, executor, true)
            ->archiveLogs(files, place.empty() ? destination : place, list);
    }

    const std::string destination = folder.makeFolder("Ziel – 保存");
    const testing::HookedLog log;
};

TEST_F(LogArchiveTest, KeepsTheNewestFiveArchivesAndWhatIsNotItsOwn) {
    const std::string own = files->joinPath(destination, "logArchive");
    files->mkdir(own);
    const std::string letter = put("logArchive/letter.txt");
    for (const std::string year : {"2000", "2001", "2002", "2003", "2004", "2005"}) {
        put("logArchive_" + year + "-01-01_00-00-00.zip");
    }
    put("logArchive_2099-01-01_00-00-00.zip.part"); // a program ended while it wrote them
    put("logArchive_2099-01-01_00-00-00.zip.0123.part");
    auto interrupted = platform::OpenFolder::makePrivate(destination, "logArchive-");
    interrupted->copyIn(letter, "left");
    const auto used = platform::OpenFolder::makePrivate(destination, "logArchive-");
    put("alogArchive_1999.zip");
    interrupted.reset();
    archive(makeLogs());
    EXPECT_THAT(files->getFiles(destination),
                ElementsAre(HasSubstr("alogArchive_1999"), HasSubstr("_2002-"), HasSubstr("_2003-"),
                            HasSubstr("_2004-"), HasSubstr("_2005-"), HasSubstr("_20")));
    EXPECT_THAT(files->getDirsRecursive(destination), ElementsAre(own, used->path()));
    EXPECT_EQ(testing::readFile(letter), "not ours\n");
}

TEST_F(LogArchiveTest, SkipsWhatItCannotTakeAndSaysSo) {
    auto list = makeLogs();
    const std::string text = list.front().second;
    list.emplace_back("missing.txt", folder / "absent");
    list.emplace_back("folder.txt", folder.makeFolder("folder"));
    for (const std::string name : {"../escaped", "..", ".", "", "a/b", "a\\b", "C:stream"}) {
        list.emplace_back(name, text);
    }
    list.insert(list.end(), 150, {"a.txt", text});
    list.emplace_back("a(1).txt", text);
    archive(list);
    EXPECT_THAT(testing::readFile(onlyFile()), AllOf(HasSubstr("a.txt"), HasSubstr("a(150).txt"),
                                                     HasSubstr("a(1)(1).txt"), HasSubstr("b.txt")));
    auto lines = log.lines();
    EXPECT_THAT(lines, Contains("<Debug> Finished writing zip file, added 153 files."));
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("<Error>"); });
    EXPECT_THAT(lines, ElementsAre(HasSubstr("Failed to copy: " + folder / "absent"),
                                   HasSubstr("Failed to copy: " + folder / "folder"),
                                   EndsWith("name: ../escaped"), EndsWith("name: .."),
                                   EndsWith("name: ."), EndsWith("name: "), EndsWith("name: a/b"),
                                   EndsWith("name: a\\b"), EndsWith("name: C:stream")));
}

TEST_F(LogArchiveTest, EndsWithOneErrorLineAndNoFileWhenItFails) {
    const auto expectError = [&](const std::string& text) {
        EXPECT_THAT(log.lines().back(), StartsWith("<Error> " + text));
        EXPECT_THAT(files->getFilesRecursive(folder.path()),
                    ElementsAre(HasSubstr("a.txt"), HasSubstr("b.txt")));
        EXPECT_THAT(files->getDirs(destination), IsEmpty());
    };
    archive(makeLogs(), {}, folder / "absent");
    expectError("Log archive failed, with exception: cannot make a folder in ");
    archive({{"a.txt", folder / "absent"}});
    expectError("Log archive failed, with exception: none of the files can be archived");
    archive(makeLogs(), [](const FileLogger::Job&) { throw 1; });
    expectError("Log archive failed, with exception: unknown");
    zipFolder(folder / "absent", files->joinPath(destination, "out.zip"), true);
    expectError("getting files from dir: " + folder / "absent" + ", errorCode: ");
    zipFolder(logs, folder / "absent" + "/out.zip", true);
    expectError("opening file stream: " + folder / "absent" + "/out.zip, errorCode: ");
}

TEST_F(LogArchiveTest, KeepsNamesOfEntriesInsideTheFolderOnAnySystem) {
    ZipEntryNames names("");
    for (const auto& [path, name] : std::initializer_list<std::pair<std::string, std::string>>{
             {"a/../b", "a/__/b"},
             {"/etc/./x", "etc/x"},
             {"C:x", "C_x"},
             {"a.b/\xFF.txt", "a.b/\xEF\xBF\xBD.txt"},
             {"a.b/\xFE.txt", "a.b/\xEF\xBF\xBD(1).txt"}}) {
        EXPECT_EQ(names.next(path), name);
    }
    EXPECT_EQ(ZipEntryNames("..").next("..\\up"),
              files->pathSeparator() == "/" ? "__/.._up" : "__/__/up");
}

} // namespace
} // namespace tarn
