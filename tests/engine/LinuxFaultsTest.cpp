#include "engine/EngineUnderTest.h"
#include "engine/MediaProbe.h"
#include "platform/Files.h"

#include <gmock/gmock.h>

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
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{20'000, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    expectRefusal(20026, {recording("h264-aac.mkv")}, destination());
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &former), 0);
}

TEST_F(LinuxFaults, PipesAndDevicesAreNeitherReadNorReplaced) {
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    expectRefusal(20002, {pipe}, destination());
    expectRefusal(20002, {"/dev/null"}, destination());
    expectRefusal(20024, {recording("h264-aac.mkv")}, pipe);
    expectRefusal(20024, {recording("h264-aac.mkv")}, "/dev/null");
    const std::string link = folder / "link.mkv";
    ASSERT_EQ(::symlink(recording("h264-aac.mkv").c_str(), link.c_str()), 0);
    expectRefusal(20021, {recording("h264-aac.mkv")}, link);
}

TEST_F(LinuxFaults, ASourceThatShrinksOrGrowsMeanwhileIsAnErrorAndARemovedOneIsReadToItsEnd) {
    const std::string source = folder / "source.webm";
    const std::pair<std::int32_t, std::function<void()>> cases[] = {
        {20008, [&] { ASSERT_EQ(::truncate(source.c_str(), 900'000), 0); }},
        {20008, [&] { ASSERT_EQ(::truncate(source.c_str(), 9'000'000), 0); }},
        {0, [&] { ASSERT_EQ(::unlink(source.c_str()), 0); }},
    };
    for (const auto& [code, change] : cases) {
        folder.write("source.webm", readFile(recording("long.webm")));
        RecordingSink sink;
        sink.onProgress = [&, isChanged = false](float percent) mutable {
            if (percent > 1 && !std::exchange(isChanged, true)) {
                change();
            }
        };
        ASSERT_EQ(start(*engine.create(sink), {source}, destination()), 0);
        ASSERT_TRUE(sink.waitForEnd());
        ASSERT_EQ(engine.stopConversions(60'000), 0);
        if (code != 0) {
            EXPECT_THAT(sink.errors(), ElementsAre(code));
            EXPECT_NE(::access(destination().c_str(), F_OK), 0);
        } else {
            EXPECT_THAT(sink.errors(), IsEmpty());
            EXPECT_EQ(probe(destination())[0].decoded, 300U);
        }
        EXPECT_THAT(temporaries(folder.path()), IsEmpty());
    }
}

TEST_F(LinuxFaults, ADestinationFolderThatGoesAwayIsAnError) {
    const std::string away = folder.makeFolder("away");
    RecordingSink sink;
    sink.onProgress = [&](float percent) {
        if (percent > 1) {
            ::rename(away.c_str(), (folder / "renamed").c_str());
        }
    };
    ASSERT_EQ(start(*engine.create(sink), {recording("long.webm")}, away + "/out.mp4"), 0);
    ASSERT_TRUE(sink.waitForEnd());
    EXPECT_THAT(sink.errors(), ElementsAre(20022));
}

TEST_F(LinuxFaults, AProcessThatEndsMidwayLeavesNothingAndNobodyTouchesATemporaryInUse) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto& sink = *new RecordingSink();
        start(*engine.create(sink), {recording("long.webm")}, destination());
        sink.waitForProgress(1);
        std::exit(0); // NOLINT(concurrency-mt-unsafe): the very thing under test
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(tarn::platform::listFolder(folder.path())->size(), 0U);

    // One that a dead process left behind, and one that is at work: it has the mark of a file in
    // use.
    folder.write(".out.mp4.1-2.part", "left");
    const std::string other = folder.write(".out.mp4.1-1.part", "at work");
    const int held = ::open(other.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_SH), 0);
    RecordingSink sink;
    ASSERT_EQ(start(*engine.create(sink), {recording("h264-aac.mkv")}, destination()), 0);
    ASSERT_TRUE(sink.waitForEnd());
    EXPECT_THAT(temporaries(folder.path()), ElementsAre(".out.mp4.1-1.part"));
    EXPECT_EQ(trace.count(2, "left behind"), 1U);
    ::close(held);
}

TEST_F(LinuxFaults, TheLibrariesExportTheContractAloneAndAreReallyUnloaded) {
    const auto exports = [&](const std::string& library) {
        const std::string command = "nm -D --defined-only " RUNTIME_FOLDER "/lib" + library +
                                    ".so | awk '{print $3}' | sort | tr '\\n' ' ' > ";
        EXPECT_EQ(std::system((command + folder / "exports").c_str()), 0); // NOLINT: fixed
        return readFile(folder / "exports");
    };
    EXPECT_EQ(exports("mediaconverter"), "CreateMediaConverter ZelStopConversions ");
    EXPECT_EQ(exports("zelclient"), "ZelSetTraceMaxLevel ZelSetTraceSink ");
    const auto isMapped = [](const std::string& name) {
        return readFile("/proc/self/maps").find(name) != std::string::npos;
    };
    EXPECT_TRUE(isMapped("libmediaconverter.so"));
    engine.setTraceSink(nullptr);
    engine.setTraceSink = nullptr;
    engine.unloadConverter();
    engine.unloadClient();
#ifndef __SANITIZE_THREAD__ // which keeps every library for its reports
    EXPECT_FALSE(isMapped("libmediaconverter.so"));
    EXPECT_FALSE(isMapped("libzelclient.so"));
#endif
    EXPECT_TRUE(isMapped("libzelcore.so")) << "a conversion's thread may still be in it";
}

} // namespace zelcore::testing
