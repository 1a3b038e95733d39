#include "engine/EngineUnderTest.h"
#include "engine/MediaProbe.h"

#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Faults that need the system's help: small and read-only file systems, processes that end.
namespace zelcore::testing {

using tarn::testing::readFile;
using ::testing::IsEmpty;

class LinuxFaults : public EngineTest {};

namespace {

/// A file system of its own; without the right to mount, isMounted() is false.
class SmallFileSystem {
public:
    SmallFileSystem(std::string path, const char* options) : mPath(std::move(path)) {
        mIsMounted = ::mount("tmpfs", mPath.c_str(), "tmpfs", 0, options) == 0;
    }
    ~SmallFileSystem() {
        if (mIsMounted) {
            ::umount2(mPath.c_str(), MNT_DETACH);
        }
    }
    bool isMounted() const { return mIsMounted; }
    void makeReadOnly() const {
        ASSERT_EQ(::mount("tmpfs", mPath.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0);
    }

private:
    std::string mPath;
    bool mIsMounted = false;
};

std::string output(const std::string& command) {
    std::string text;
    FILE* pipe = ::popen(command.c_str(), "r"); // NOLINT(cert-env33-c): a fixed command of the test
    std::array<char, 4096> piece{};
    while (pipe != nullptr && std::fgets(piece.data(), piece.size(), pipe) != nullptr) {
        text += piece.data();
    }
    if (pipe != nullptr) {
        ::pclose(pipe);
    }
    return text;
}

} // namespace

TEST_F(LinuxFaults, AFullDiskIsReportedWhereverItFills) {
    const std::string disk = folder.makeFolder("disk");
    const auto whole = readFile(recording("h264-aac.mkv")).size();
    // Full at once, in the middle, and with the index at the end.
    for (const std::size_t room : {std::size_t{4096}, whole / 2, whole - 4096}) {
        const SmallFileSystem small(disk, ("size=" + std::to_string(room)).c_str());
        if (!small.isMounted()) {
            GTEST_SKIP() << "mounting a file system needs more rights";
        }
        expectRefusal(20025, {recording("h264-aac.mkv")}, disk + "/out.mp4");
        EXPECT_THAT(temporaries(disk), IsEmpty());
    }
}

TEST_F(LinuxFaults, AFileSizeLimitIsAnErrorAndNotTheEndOfTheProcess) {
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{20'000, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    expectRefusal(20026, {recording("h264-aac.mkv")}, destination());
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &former), 0);
}

TEST_F(LinuxFaults, AReadOnlyFolderIsRefused) {
    const std::string disk = folder.makeFolder("disk");
    const SmallFileSystem small(disk, "size=1m");
    if (!small.isMounted()) {
        GTEST_SKIP() << "mounting a file system needs more rights";
    }
    small.makeReadOnly();
    expectRefusal(20023, {recording("h264-aac.mkv")}, disk + "/out.mp4");
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
    const struct {
        std::int32_t code;
        std::function<void()> change;
    } cases[] = {
        {20008, [&] { ASSERT_EQ(::truncate(source.c_str(), 900'000), 0); }},
        {20008, [&] { ASSERT_EQ(::truncate(source.c_str(), 9'000'000), 0); }},
        {0, [&] { ASSERT_EQ(::unlink(source.c_str()), 0); }},
    };
    for (const auto& each : cases) {
        folder.write("source.webm", readFile(recording("long.webm")));
        RecordingSink sink;
        std::atomic<bool> isChanged{false};
        sink.onProgress = [&](float percent) {
            if (percent > 1 && !isChanged.exchange(true)) {
                each.change();
            }
        };
        ASSERT_EQ(start(*engine.create(sink), {source}, destination()), 0);
        ASSERT_TRUE(sink.waitForEnd());
        ASSERT_EQ(engine.stopConversions(60'000), 0);
        if (each.code != 0) {
            EXPECT_THAT(sink.errors(), ::testing::ElementsAre(each.code));
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
    EXPECT_THAT(sink.errors(), ::testing::ElementsAre(20022));
}

TEST_F(LinuxFaults, AProcessThatEndsMidwayLeavesNothingAndAKilledOneIsTidiedUpAfter) {
    for (const bool isKilled : {false, true}) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            auto& sink = *new RecordingSink();
            start(*engine.create(sink), {recording("long.webm")}, destination());
            sink.waitForProgress(1);
            if (isKilled) {
                ::raise(SIGKILL);
            }
            std::exit(0); // NOLINT(concurrency-mt-unsafe): the very thing under test
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(WIFEXITED(status), !isKilled);
        EXPECT_EQ(temporaries(folder.path()).size(), isKilled ? 1U : 0U);
        EXPECT_NE(::access(destination().c_str(), F_OK), 0);
    }
    // Somebody else's temporary for the same destination, at work: it has the mark of a file in
    // use.
    const std::string other = folder.write(".out.mp4.1-1.part", "at work");
    const int held = ::open(other.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_SH), 0);
    RecordingSink sink;
    ASSERT_EQ(start(*engine.create(sink), {recording("h264-aac.mkv")}, destination()), 0);
    ASSERT_TRUE(sink.waitForEnd());
    EXPECT_THAT(temporaries(folder.path()), ::testing::ElementsAre(".out.mp4.1-1.part"));
    EXPECT_EQ(trace.count(2, "left behind"), 1U);
    ::close(held);
}

TEST_F(LinuxFaults, TheLibrariesExportTheContractAloneAndAreReallyUnloaded) {
    const std::string runtime = RUNTIME_FOLDER;
    const auto exports = [&](const std::string& library) {
        return output("nm -D --defined-only " + runtime + "/lib" + library +
                      ".so | awk '{print $3}' | sort | tr '\\n' ' '");
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
