#include "logging/ArchiveQueue.h"
#include "logging/FileLoggerFixture.h"
#include "logging/LogArchive.h"
#include "logging/ZipEntryNames.h"
#include "logging/ZipWriter.h"
#include "support/RecordingLogHook.h"

#include <future>
#include <unzip.h>

namespace tarn {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

std::vector<std::string> entriesOf(const std::string& zip) {
    std::vector<std::string> names;
    unzFile file = unzOpen64(zip.c_str());
    for (int result = file != nullptr ? UNZ_OK : UNZ_ERRNO; result == UNZ_OK;
         result = unzGoToNextFile(file)) {
        std::string name(1000, '\0');
        unz_file_info64 info{};
        if (unzGetCurrentFileInfo64(file, &info, name.data(), static_cast<uLong>(name.size()),
                                    nullptr, 0, nullptr, 0) != UNZ_OK) {
            break;
        }
        name.resize(info.size_filename);
        names.push_back(name);
    }
    if (file != nullptr) {
        unzClose(file);
    }
    return names;
}

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
    std::vector<std::string> archives() const {
        auto names = files->getFiles(destination);
        std::erase_if(names, [](const std::string& name) { return !name.ends_with(".zip"); });
        return names;
    }
    std::string onlyArchive() const {
        const auto names = archives();
        EXPECT_EQ(names.size(), 1U);
        return names.empty() ? "" : files->joinPath(destination, names[0]);
    }
    bool hasWorkFolder() const { return files->exists(files->joinPath(destination, "logArchive")); }

    const std::string destination = folder.makeFolder("Ziel – 保存");
    const std::string ascii = folder.makeFolder("to");
    const std::shared_ptr<FileLogger> logger = makeLogger();
    const testing::RecordingLogHook log;
};

TEST_F(LogArchiveTest, ArchivesFilesWithItsLinesInOrder) {
    const auto moment = std::chrono::sys_days{std::chrono::year{2025} / 2 / 19} +
                        std::chrono::hours(4) + std::chrono::milliseconds(485'999);
    EXPECT_EQ(LogArchive(files, destination, moment).path(),
              files->joinPath(destination, "logArchive_2025-02-19_04-08-05.zip"));
    logger->archiveLogs(files, destination + files->pathSeparator(), makeLogs());
    const std::string archive = onlyArchive();
    const std::string work = files->joinPath(destination, "logArchive");
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            "<Debug> Starting log archiving.",
            "<Debug> Attempting to generate zip file: " + archive + " ignoreRoot: true",
            "<Debug> Adding to zip : " + work, "<Debug> Finished writing zip file, added 2 files.",
            "<Debug> Zip file present",
            "<Debug> Zip file valid, " + std::to_string(files->getFileSize(archive)) + " bytes.",
            "<Debug> Log archiving finished."));
    EXPECT_FALSE(hasWorkFolder());
    ASSERT_TRUE(files->copyFile(archive, ascii + "/copy.zip"));
    EXPECT_THAT(entriesOf(ascii + "/copy.zip"), ElementsAre("log0.txt", "log1.txt"));
}

TEST_F(LogArchiveTest, KeepsTheNewestFiveArchivesAmongForeignFiles) {
    const auto add = [&](const std::string& name) {
        ASSERT_TRUE(files->writeOneLine(files->joinPath(destination, name), ""));
    };
    for (const char* year : {"2001", "2002", "2003", "2004"}) {
        add("logArchive_" + std::string(year) + "-01-01_00-00-00.zip");
    }
    add("alogArchive_1999.zip");
    add("LogArchive_1999.zip");
    add("other.txt");
    logger->archiveLogs(files, destination, makeLogs());
    EXPECT_EQ(archives().size(), 7U);
    add("logArchive_2000-01-01_00-00-00.zip");
    add("logArchive_2005-01-01_00-00-00.zip");
    logger->archiveLogs(files, destination, makeLogs());
    EXPECT_THAT(files->getFiles(destination),
                ::testing::IsSupersetOf({"alogArchive_1999.zip", "LogArchive_1999.zip", "other.txt",
                                         "logArchive_2005-01-01_00-00-00.zip"}));
    EXPECT_THAT(archives(), ::testing::Not(Contains(StartsWith("logArchive_2000"))));
    EXPECT_EQ(archives().size(), 7U);
}

TEST_F(LogArchiveTest, ClearsWhatAnInterruptedArchivingLeft) {
    files->mkdirIfNotExistsRecursive(files->joinPath(destination, "logArchive/deep"));
    folder.write("Ziel – 保存/logArchive/deep/stale.txt", "stale");
    logger->archiveLogs(files, destination, makeLogs(1));
    ASSERT_TRUE(files->rename(onlyArchive(), ascii + "/first.zip"));
    EXPECT_THAT(entriesOf(ascii + "/first.zip"), ElementsAre("log0.txt"));
    folder.write("Ziel – 保存/logArchive", "a file in the work folder's place");
    logger->archiveLogs(files, destination, makeLogs(1));
    EXPECT_FALSE(onlyArchive().empty() || hasWorkFolder());
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
    ASSERT_TRUE(files->rename(onlyArchive(), ascii + "/copy.zip"));
    EXPECT_THAT(entriesOf(ascii + "/copy.zip"),
                ::testing::UnorderedElementsAre("log0.txt", "log0(1).txt"));
    EXPECT_THAT(files->getFilesRecursive(destination), IsEmpty());
    auto errors = log.lines();
    std::erase_if(errors, [](const std::string& line) { return !line.starts_with("<Error>"); });
    EXPECT_THAT(errors,
                ElementsAre(HasSubstr("Failed to copy: " + folder / "absent"),
                            HasSubstr("Failed to copy: " + folder / "folder"),
                            HasSubstr("name: ../escaped.txt"), HasSubstr("name: .."),
                            HasSubstr("name: ."), HasSubstr("name: "), HasSubstr("name: a/b.txt"),
                            HasSubstr("name: a\\b.txt"), HasSubstr("name: C:stream.txt")));
}

TEST_F(LogArchiveTest, EndsWithOneErrorLineWhenTheDestinationIsNoFolder) {
    const auto list = makeLogs();
    for (const std::string& place :
         {folder / "absent", folder.write("file", "kept"), std::string()}) {
        log.clear();
        logger->archiveLogs(files, place, list);
        EXPECT_THAT(log.lines(), ElementsAre("<Debug> Starting log archiving.",
                                             StartsWith("<Error> Log archive failed, with "
                                                        "exception: ")));
    }
    EXPECT_EQ(testing::readFile(folder / "file"), "kept");
    log.clear();
    logger->archiveLogs(files, destination, {{"a.txt", folder / "absent"}});
    EXPECT_EQ(log.lines().back(),
              "<Error> Log archive failed, with exception: none of the files "
              "can be archived");
    EXPECT_THAT(files->getFiles(destination), IsEmpty());
    EXPECT_FALSE(hasWorkFolder());
}

TEST_F(LogArchiveTest, ReplacesNothingAndLeavesNothingWhenZippingFails) {
    const LogArchive archive(files, destination);
    archive.collect(makeLogs());
    ASSERT_TRUE(files->mkdirIfNotExistsRecursive(archive.path() + ".part"));
    const ZipResult result = archive.write();
    EXPECT_FALSE(result.succeeded());
    EXPECT_NE(result.errorCode, 0);
    EXPECT_EQ(result.text, "opening file stream: " + archive.path());
    EXPECT_THAT(log.lines(), Contains("<Error> opening file stream: " + archive.path() +
                                      ", errorCode: " + std::to_string(result.errorCode)));
    EXPECT_FALSE(files->exists(archive.path()) || hasWorkFolder());
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

TEST_F(LogArchiveTest, NamesEntriesByTheirPathWithForwardSlashes) {
    const std::string root = folder.makeFolder("root");
    files->mkdirIfNotExistsRecursive(files->joinPath(root, "b"));
    folder.write("root/a – ä.txt", "a");
    folder.write("root/b/c.txt", "c");
    EXPECT_TRUE(zipFolder(root, ascii + "/without.zip", true).succeeded());
    EXPECT_THAT(entriesOf(ascii + "/without.zip"), ElementsAre("a – ä.txt", "b/c.txt"));
    EXPECT_TRUE(zipFolder(root + files->pathSeparator(), ascii + "/with.zip", false).succeeded());
    EXPECT_THAT(entriesOf(ascii + "/with.zip"), ElementsAre("root/a – ä.txt", "root/b/c.txt"));
}

TEST_F(LogArchiveTest, DoesNotNeedTheLoggerWhenTheJobRuns) {
    FileLogger::Job kept;
    auto own = std::make_shared<FileLogger>(
        logs, 1, files, [&](FileLogger::Job job) { kept = std::move(job); }, true);
    own->archiveLogs(files, destination, makeLogs());
    EXPECT_THAT(archives(), IsEmpty());
    const std::weak_ptr<FileLogger> watched = own;
    own.reset();
    EXPECT_TRUE(watched.expired());
    kept();
    EXPECT_FALSE(onlyArchive().empty());
}

TEST_F(LogArchiveTest, TakesTenThousandFiles) {
    // Wine reads the whole folder for each name that it looks up there: minutes for so many.
    const int count = platform::pathSeparator() == '/' ? 10'000 : 1'000;
    const LogArchive archive(files, destination);
    archive.collect(makeLogs(count));
    EXPECT_TRUE(archive.write().succeeded());
    EXPECT_THAT(log.lines(), Contains("<Debug> Finished writing zip file, added " +
                                      std::to_string(count) + " files."));
}

TEST_F(LogArchiveTest, KeepsWritingLinesWhileAQueueOfItsOwnMakesALargeArchive) {
    setLogHook({}); // the lines of the archive come from another thread
    const auto executor = makeArchiveQueue();
    const auto own = std::make_shared<FileLogger>(logs, 1, files, executor, true);
    own->start(true);
    own->archiveLogs(files, destination, {{"large", folder.write("large", noise(5'000'000))}});
    std::promise<void> done;
    auto finished = done.get_future();
    executor([&] { done.set_value(); });
    int lines = 0;
    while (finished.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        this->FileLoggerFixture::log(*own, numbered(lines++));
        own->flush();
        if (lines == 100) {
            EXPECT_EQ(content("current_log.txt"), numberedLines(0, 100));
            EXPECT_THAT(archives(), IsEmpty()); // still being made
        }
    }
    EXPECT_GE(lines, 100);
    EXPECT_FALSE(onlyArchive().empty());
}

} // namespace
} // namespace tarn
