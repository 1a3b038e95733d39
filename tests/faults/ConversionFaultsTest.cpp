// System calls that fail in the middle of a conversion.

#include "faults/FaultFixture.h"

#include <cerrno>
#include <sys/mount.h>

namespace e2e {
namespace {

class ConversionFaults : public FaultFixture {};

TEST_F(ConversionFaults, AFailedCallIsAnErrorThatLeavesRecordingAndOlderDestinationAsTheyWere) {
    const std::tuple<std::string, int, std::string> cases[] = {
        {"open .part 1 1", ENOSPC, "20025"},
        {"open .part 1 1", EMFILE, "20026"},
        {"open .part 1 1", EROFS, "20023"},
        // Full at the start, in the middle, and for what is written last: the index at the end.
        {"write .part 1 0", ENOSPC, "20025"},
        {"write .part 3 0", ENOSPC, "20025"},
        {"write .part 3 3", ENOSPC, "20025"}, // even if there was room again later
        {"write .part 5 0", EIO, "20026"},
        {"fsync .part 1 1", EIO, "20026"},
        {"close .part 1 1", EIO, "20026"},
        {"read .part 1 1", EIO, "20027"}, // while it is verified
        {"rename .part 1 0", EACCES, "20023"},
        {"rename .part 1 0", ENOSPC, "20025"},
        {"read meeting.mkv 1 1", EIO, "20009"},
        {"read meeting.mkv 9 9", EIO, "20009"},
        {"read meeting.mkv 20 0", ESTALE, "20009"},
    };
    for (const auto& [calls, error, code] : cases) {
        SCOPED_TRACE(calls);
        mFolder.write("out.mp4", "older");
        const ProcessResult result = convert(calls + " " + std::to_string(error));
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors,
                    AllOf(HasSubstr("The conversion failed"), HasSubstr("error " + code + ": ")));
        EXPECT_TRUE(isSourceWhole());
        EXPECT_TRUE(readFile(mDestination) == "older");
        expectTidy();
        startAgain();
    }
}

TEST_F(ConversionFaults, ShortReadsAndWritesAndInterruptedCallsChangeNothing) {
    const ProcessResult result = convert(
        "write .part 1 0 short;read meeting.mkv 1 0 short;read .part 1 0 short;"
        "fsync .part 1 2 " +
        std::to_string(EINTR));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(isDestinationWhole());
    EXPECT_FALSE(exists(mSource));
    expectTidy();
}

TEST_F(ConversionFaults, AFolderThatCannotBeSyncedOrARecordingThatCannotBeDeletedLeavesBothFiles) {
    // The second fsync on the folder's own path: its temporary has a longer one.
    const std::pair<std::string, int> cases[] = {{"fsync " + mFolder.path() + " 2 0 ", 1},
                                                 {"unlink meeting.mkv 1 0 ", 0}};
    for (const auto& [calls, status] : cases) {
        EXPECT_EQ(convert(calls + std::to_string(EIO)).status, status);
        EXPECT_TRUE(isSourceWhole());
        EXPECT_TRUE(isDestinationWhole());
        startAgain();
    }
}

TEST_F(ConversionFaults, ADiskThatIsReallyFullCostsNeitherRecordingNorOlderDestination) {
    const std::string disk = mFolder.makeFolder("disk");
    if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "mounting a file system needs more rights";
    }
    Process::Start start = command({"--delete-sources", mSource, disk + "/out.mp4"});
    start.environment.emplace_back("XDG_DATA_HOME", disk); // the log is on the full disk, too
    mFolder.write("disk/out.mp4", "older");
    const ProcessResult result = runProcess(start);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("20025"));
    EXPECT_TRUE(readFile(disk + "/out.mp4") == "older");
    EXPECT_EQ(tarn::FileUtils().getFiles(disk), std::vector<std::string>{"out.mp4"});
    ::umount2(disk.c_str(), MNT_DETACH);
    EXPECT_TRUE(isSourceWhole());
}

} // namespace
} // namespace e2e
