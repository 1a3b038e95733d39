#include "engine/EngineUnderTest.h"
#include "engine/MediaProbe.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Faults that need the system's help: limits, odd files, processes that end.
namespace zelcore::testing {

using tarn::testing::readFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LinuxFaults : public EngineTest {};

TEST_F(LinuxFaults, AFileSizeLimitIsAnErrorAndNotTheEndOfTheProcess) {
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = 20'000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    expectRefusal(20026, {recording("h264-aac.mkv")}, destination);
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

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
    const std::pair<std::int32_t, std::function<int()>> cases[] = {
        {20008, [&] { return ::truncate(source.c_str(), 900'000); }},
        {20008, [&] { return ::truncate(source.c_str(), 9'000'000); }},
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
            EXPECT_EQ(probe(to).at(0).decoded, 300U);
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
        auto& sink = *new RecordingSink();
        start(sink, {recording("long.webm")}, destination);
        sink.waitFor(1);
        std::exit(0); // NOLINT(concurrency-mt-unsafe): the very thing under test
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(tarn::platform::listFolder(folder.path())->size(), 0U);

    // One that a dead process left behind, and one with the mark of a file in use.
    folder.write(".out.mp4.1-2.part", "left");
    const std::string other = folder.write(".out.mp4.1-1.part", "at work");
    const int held = ::open(other.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_SH), 0);
    RecordingSink sink;
    ASSERT_EQ(start(sink, {recording("h264-aac.mkv")}, destination), 0);
    ASSERT_NO_FATAL_FAILURE(awaitEnd(sink));
    EXPECT_EQ(temporaries(), 1U);
    EXPECT_EQ(readFile(other), "at work");
    EXPECT_EQ(trace.count(2, "left behind"), 1);
    ::close(held);
}

TEST_F(LinuxFaults, TheLibrariesExportTheContractAloneAndAreReallyUnloaded) {
    const std::string command = "cd " RUNTIME_FOLDER
                                " && nm -D --defined-only libmediaconverter.so"
                                " libzelclient.so | awk 'NF == 3 {print $3}' | xargs > ";
    EXPECT_EQ(std::system((command + folder / "exports").c_str()), 0); // NOLINT: fixed
    EXPECT_EQ(readFile(folder / "exports"),
              "CreateMediaConverter ZelConversionLosses ZelStopConversions ZelSetTraceMaxLevel "
              "ZelSetTraceSink\n");
    unload();
    const std::string mapped = readFile("/proc/self/maps");
#ifndef __SANITIZE_THREAD__ // which keeps every library for its reports
    EXPECT_FALSE(mapped.contains("libmediaconverter.so") || mapped.contains("libzelclient.so"));
#endif
    EXPECT_TRUE(mapped.contains("libzelcore.so")) << "a conversion's thread may still be in it";
}

} // namespace zelcore::testing
