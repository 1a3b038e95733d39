#include "engine/EngineUnderTest.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

/// Threads that are at work while their process ends: the leak check may crash when it stops them.
static bool areThreadsAtWork = false;
extern "C" [[gnu::visibility("default")]] int __lsan_is_turned_off();
int __lsan_is_turned_off() {
    return static_cast<int>(areThreadsAtWork);
}

// Faults that need the system's help: limits, odd files, processes that end.
namespace zelcore::testing {

using tarn::testing::readFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LinuxFaults : public EngineTest {};

TEST_F(LinuxFaults, PipesAndDevicesAreNeitherReadNorReplaced) {
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& odd : {pipe, std::string("/dev/null")}) {
        expectRefusal(20002, {odd}, destination);
        expectRefusal(20024, {recording("h264-aac.mkv")}, odd);
    }
}

TEST_F(LinuxFaults, ASourceOrFolderThatChangesMeanwhileIsAnErrorAndARemovedSourceIsReadToItsEnd) {
    const std::string source = folder / "source.webm";
    const std::string away = folder.makeFolder("away");
    ASSERT_NO_FATAL_FAILURE(convert({recording("long.webm")}, destination));
    const std::pair<std::int32_t, std::function<int()>> cases[] = {
        {20008, [&] { return ::truncate(source.c_str(), 900'000); }},
        {20008, [&] { return ::truncate(source.c_str(), 9'000'000); }},
        {20008,
         [&] {
             const std::string other = folder.write("other", readFile(source));
             return ::rename(other.c_str(), source.c_str());
         }},
        {0, [&] { return ::unlink(source.c_str()); }},
        {20022, [&] { return ::rename(away.c_str(), (folder / "renamed").c_str()); }},
    };
    for (const auto& [code, change] : cases) {
        folder.write("source.webm", readFile(recording("long.webm")));
        RecordingSink sink;
        sink.onProgress = [&, &change = change, isChanged = false](float percent) mutable {
            if (percent > 1 && !std::exchange(isChanged, true)) {
                EXPECT_EQ(change(), 0);
            }
        };
        const std::string to = away + "/out.mp4";
        ASSERT_EQ(start(sink, {source}, to), 0);
        ASSERT_NO_FATAL_FAILURE(awaitEnd(sink));
        if (code != 0) {
            EXPECT_THAT(sink.errors, ElementsAre(code));
            EXPECT_FALSE(tarn::platform::fileDetails(to));
        } else {
            EXPECT_THAT(sink.errors, IsEmpty());
            EXPECT_EQ(readFile(to), readFile(destination));
            ::unlink(to.c_str());
        }
        const auto left = tarn::platform::listFolder(away);
        EXPECT_TRUE(!left || left->empty());
    }
}

TEST_F(LinuxFaults, AProcessThatEndsMidwayLeavesNothingAndNobodyTouchesATemporaryInUse) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        areThreadsAtWork = true;
        auto& sink = *new RecordingSink();
        start(sink, {recording("long.webm")}, destination);
        sink.waitFor(1);
        std::exit(0); // NOLINT(concurrency-mt-unsafe): the very thing under test
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(tarn::platform::listFolder(folder.path())->size(), 0U);

    // What a dead process left behind goes; what is in use, has no mark of ours, not quite such a
    // name, or is a source itself stays.
    const std::string whole = readFile(recording("h264-aac.mkv"));
    RecordingSink first;
    ASSERT_EQ(start(first, {recording("h264-aac.mkv")}, destination), 0);
    ASSERT_NO_FATAL_FAILURE(awaitEnd(first));
    const std::string ours = readFile(destination);
    folder.write(".out.mp4.1-1.part", ours);
    folder.write(".out.mp4.1-2.part", "");
    const std::pair<std::string, std::string> stay[] = {
        {".out.mp4.1-3.part", ours}, {".out.mp4.2-1.part", whole},  {".out.mp4.mine.part", ours},
        {".out.mp4.1-.part", ours},  {".out.mp4.2-1-1.part", ours}, {".out.mp4.1-4.part", ours}};
    for (const auto& [name, content] : stay) {
        folder.write(name, content);
    }
    const int held = ::open((folder / ".out.mp4.1-3.part").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_SH), 0);
    RecordingSink sink;
    ASSERT_EQ(start(sink, {folder / ".out.mp4.1-4.part"}, destination), 0);
    ASSERT_NO_FATAL_FAILURE(awaitEnd(sink));
    ::close(held);
    EXPECT_EQ(temporaries(), std::size(stay));
    for (const auto& [name, content] : stay) {
        EXPECT_EQ(readFile(folder / name), content) << name;
    }
    EXPECT_EQ(trace.count(2, "left behind"), 2);
}

TEST_F(LinuxFaults, ADestinationIsNoLinkAndNoMoreOpenThanItsSources) {
    const std::string source = folder.write("a.mkv", readFile(recording("h264-aac.mkv")));
    const std::string link = folder / "link.mp4";
    for (const std::string& target : {source, folder / "nowhere"}) {
        ASSERT_EQ(::symlink(target.c_str(), link.c_str()), 0);
        expectRefusal(20024, {source}, link);
        ::unlink(link.c_str());
    }
    trace.lines.clear();
    // The other part is of mode 0644.
    for (const auto& [mode, narrowed] :
         {std::pair{0600U, 0600U}, {0640U, 0640U}, {0444U, 0644U}, {0777U, 0644U}}) {
        ASSERT_EQ(::chmod(source.c_str(), mode), 0);
        convert({recording("pcm.wav"), source}, destination);
        struct stat made {};
        ASSERT_EQ(::stat(destination.c_str(), &made), 0);
        EXPECT_EQ(made.st_mode & 0777U, narrowed);
        ::unlink(destination.c_str());
    }
}

TEST_F(LinuxFaults, TheLibrariesExportTheContractAloneAndAreReallyUnloaded) {
    const std::string command = "cd " RUNTIME_FOLDER
                                " && nm -D --defined-only libmediaconverter.so"
                                " libzelclient.so | awk 'NF == 3 {print $3}' | xargs > ";
    EXPECT_EQ(std::system((command + folder / "exports").c_str()), 0); // NOLINT: fixed
    EXPECT_EQ(readFile(folder / "exports"),
              "CreateMediaConverter ZelConversionEnding ZelConversionLosses ZelConversionSetting "
              "ZelStopConversions ZelSetTraceMaxLevel ZelSetTraceSink\n");
    unload();
    const std::string mapped = readFile("/proc/self/maps");
#ifndef __SANITIZE_THREAD__ // which keeps every library for its reports
    EXPECT_FALSE(mapped.contains("libmediaconverter.so") || mapped.contains("libzelclient.so"));
#endif
    EXPECT_TRUE(mapped.contains("libzelcore.so")) << "a conversion's thread may still be in it";
}

} // namespace zelcore::testing
