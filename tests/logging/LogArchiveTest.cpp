#include "logging/ArchiveQueue.h"
#include "logging/FileLoggerFixture.h"
#include "logging/LogArchive.h"
#include "logging/ZipEntryNames.h"
#include "support/RecordingLogHook.h"

#include <future>

namespace tarn {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class LogArchiveTest : public testing::FileLoggerFixture {
protected:
    LogArchive::Files makeLogs(int count = 2) const {
        LogArchive::Files result;
        for (int number = 0; number < count; ++number) {
            const std::string name = "log" + std::to_string(number) + ".txt";
            result.emplace_back(name, folder.write("Logs/" + name, numberedLines(number, 2)));
        }
        return result;
    }
    void put(const std::string& name) const {
        ASSERT_TRUE(files->writeOneLine(files->joinPath(destination, name), ""));
    }
    std::string onlyFile() const {
        const auto names = files->getFilesRecursive(destination);
        EXPECT_EQ(names.size(), 1U);
        return names.empty() ? "" : names[0];
    }

    const std::string destination = folder.makeFolder("Ziel – 保存");
    const std::string work = files->joinPath(destination, "logArchive");
    const std::shared_ptr<FileLogger> logger = startLogger();
    const testing::RecordingLogHook log;
};

TEST_F(LogArchiveTest, ArchivesFilesWhenTheJobRunsThoughItsLoggerIsGone) {
    const auto moment = std::chrono::sys_days{std::chrono::year{2025} / 2 / 19} +
                        std::chrono::hours(4) + std::chrono::milliseconds(485'999);
    EXPECT_EQ(LogArchive(files, destination, moment).path(),
              files->joinPath(destination, "logArchive_2025-02-19_04-08-05.zip"));
    put("logArchive"); // a file in the work folder's place
    FileLogger::Job job;
    const auto keep = [&](FileLogger::Job given) { job = std::move(given); };
    std::make_shared<FileLogger>(logs, 1, files, keep, true)
        ->archiveLogs(files, destination + files->pathSeparator(), makeLogs());
    EXPECT_THAT(files->getFiles(destination), IsEmpty());
    job();
    const std::string archive = onlyFile();
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            "<Debug> Starting log archiving.",
            "<Debug> Attempting to generate zip file: " + archive + " ignoreRoot: true",
            "<Debug> Adding to zip : " + work, "<Debug> Finished writing zip file, added 2 files.",
            "<Debug> Zip file present",
            "<Debug> Zip file valid, " + std::to_string(files->getFileSize(archive)) + " bytes.",
            "<Debug> Log archiving finished."));
}

TEST_F(LogArchiveTest, KeepsTheNewestFiveArchivesAmongForeignFiles) {
    files->mkdirIfNotExistsRecursive(files->joinPath(work, "left by an interrupted archiving"));
    for (const std::string year : {"2000", "2001", "2002", "2003", "2004", "2005"}) {
        put("logArchive_" + year + "-01-01_00-00-00.zip");
    }
    put("alogArchive_1999.zip");
    logger->archiveLogs(files, destination, makeLogs());
    EXPECT_THAT(files->getFilesRecursive(destination),
                ElementsAre(HasSubstr("alogArchive_1999"), HasSubstr("_2002-"), HasSubstr("_2003-"),
                            HasSubstr("_2004-"), HasSubstr("_2005-"), HasSubstr("_20")));
}

TEST_F(LogArchiveTest, SkipsWhatItCannotTakeAndSaysSo) {
    auto list = makeLogs(1);
    list.emplace_back("missing.txt", folder / "absent");
    list.emplace_back("folder.txt", folder.makeFolder("folder"));
    for (const std::string name :
         {"../escaped.txt", "..", ".", "", "a/b.txt", "a\\b.txt", "C:stream.txt"}) {
        list.emplace_back(name, list.front().second);
    }
    list.emplace_back("log0.txt", folder.write("Logs/second.txt", "the same name again"));
    logger->archiveLogs(files, destination, list);
    const std::string archive = testing::readFile(onlyFile());
    EXPECT_TRUE(archive.contains("log0.txt") && archive.contains("log0(1).txt"));
    auto lines = log.lines();
    EXPECT_THAT(lines, Contains("<Debug> Finished writing zip file, added 2 files."));
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("<Error>"); });
    EXPECT_THAT(lines,
                ElementsAre(HasSubstr("Failed to copy: " + folder / "absent"),
                            HasSubstr("Failed to copy: " + folder / "folder"),
                            HasSubstr("name: ../escaped.txt"), HasSubstr("name: .."),
                            HasSubstr("name: ."), HasSubstr("name: "), HasSubstr("name: a/b.txt"),
                            HasSubstr("name: a\\b.txt"), HasSubstr("name: C:stream.txt")));
}

TEST_F(LogArchiveTest, EndsWithOneErrorLineAndNoFileWhenNothingCanBeArchived) {
    const LogArchive::Files absent{{"a.txt", folder / "absent"}};
    for (const auto& [place, list] :
         std::initializer_list<std::pair<std::string, decltype(absent)>>{
             {folder / "absent", makeLogs()}, {"", makeLogs()}, {destination, absent}}) {
        log.clear();
        logger->archiveLogs(files, place, list);
        EXPECT_THAT(log.lines().back(), StartsWith("<Error> Log archive failed, with exception: "));
        EXPECT_FALSE(files->exists(place.empty() ? "logArchive" : work));
    }
    EXPECT_THAT(files->getFilesRecursive(destination), IsEmpty());
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

TEST_F(LogArchiveTest, TakesTenThousandFiles) {
    // Wine reads the whole folder for each name that it looks up there: minutes for so many.
    const int count = platform::pathSeparator() == '/' ? 10'000 : 1'000;
    logger->archiveLogs(files, destination, makeLogs(count));
    EXPECT_THAT(log.lines(), Contains("<Debug> Finished writing zip file, added " +
                                      std::to_string(count) + " files."));
}

TEST_F(LogArchiveTest, KeepsWritingLinesWhileAQueueOfItsOwnMakesALargeArchive) {
    setLogHook({}); // the lines of the archive come from another thread
    const auto executor = makeArchiveQueue();
    FileLogger own(logs, 1, files, executor, true);
    own.start(true);
    own.archiveLogs(files, destination, {{"large", folder.write("large", noise(5'000'000))}});
    std::promise<void> done;
    auto finished = done.get_future();
    executor([&] { done.set_value(); });
    logNumbered(own, 0, 100);
    own.flush();
    EXPECT_EQ(content("current_log.txt"), numberedLines(0, 100));
    EXPECT_NE(finished.wait_for(std::chrono::seconds(0)), std::future_status::ready);
    finished.wait();
    EXPECT_THAT(onlyFile(), ::testing::EndsWith(".zip"));
}

} // namespace
} // namespace tarn
