// System calls that fail in the middle of a conversion.

#include "faults/FaultFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <sys/mount.h>

namespace e2e {
namespace {

using tarn::testing::readFile;
using ::testing::AllOf;
using ::testing::HasSubstr;

class ConversionFaults : public FaultFixture {};

std::string rule(const std::string& call, const std::string& path, int first, int last, int error) {
    return call + " " + path + " " + std::to_string(first) + " " + std::to_string(last) + " " +
           std::to_string(error);
}

TEST_F(ConversionFaults, AFailedCallIsAnErrorThatLeavesRecordingAndOlderDestinationAsTheyWere) {
    const struct {
        std::string rules;
        std::string code;
    } cases[] = {
        {rule("open", ".part", 1, 1, ENOSPC), "20025"},
        {rule("open", ".part", 1, 1, EMFILE), "20026"},
        {rule("open", ".part", 1, 1, EROFS), "20023"},
        // Full at the start, in the middle, and for what is written last: the index at the end.
        {rule("write", ".part", 1, 0, ENOSPC), "20025"},
        {rule("write", ".part", 3, 0, ENOSPC), "20025"},
        {rule("write", ".part", 3, 3, ENOSPC), "20025"}, // even if there was room again later
        {rule("write", ".part", 5, 0, EIO), "20026"},
        {rule("fsync", ".part", 1, 1, EIO), "20026"},
        {rule("close", ".part", 1, 1, EIO), "20026"},
        {rule("read", ".part", 1, 1, EIO), "20027"}, // while it is verified
        {rule("rename", ".part", 1, 0, EACCES), "20023"},
        {rule("rename", ".part", 1, 0, ENOSPC), "20025"},
        {rule("read", "meeting.mkv", 1, 1, EIO), "20009"},
        {rule("read", "meeting.mkv", 9, 9, EIO), "20009"},
        {rule("read", "meeting.mkv", 20, 0, ESTALE), "20009"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.rules);
        mFolder.write("out.mp4", "older");
        const ProcessResult result = convert(each.rules);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, AllOf(HasSubstr("The conversion failed"), HasSubstr(each.code)));
        EXPECT_TRUE(isSourceWhole());
        EXPECT_TRUE(readFile(mDestination) == "older");
        expectTidy();
        startAgain();
    }
}

TEST_F(ConversionFaults, ShortReadsAndWritesAndInterruptedCallsChangeNothing) {
    const ProcessResult result =
        convert("write .part 1 0 short;read meeting.mkv 1 0 short;read .part 1 0 short;" +
                rule("fsync", ".part", 1, 2, EINTR));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(isDestinationWhole());
    EXPECT_FALSE(exists(mSource));
    expectTidy();
}

TEST_F(ConversionFaults, AFolderThatCannotBeSyncedKeepsTheRecordingBesideTheDestination) {
    // The first fsync on the folder's own path: its temporary has a longer one.
    const ProcessResult result = convert(rule("fsync", mFolder.path(), 2, 0, EIO));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(isSourceWhole());
    EXPECT_TRUE(isDestinationWhole());
}

TEST_F(ConversionFaults, ARecordingThatCannotBeDeletedStaysBesideTheDestination) {
    const ProcessResult result = convert(rule("unlink", "meeting.mkv", 1, 0, EACCES));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(isSourceWhole());
    EXPECT_TRUE(isDestinationWhole());
}

TEST_F(ConversionFaults, ADiskThatIsReallyFullCostsNeitherRecordingNorOlderDestination) {
    const std::string disk = mFolder.makeFolder("disk");
    if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "mounting a file system needs more rights";
    }
    tarn::testing::Process::Start start = command({"--delete-sources", mSource, disk + "/out.mp4"});
    start.environment.emplace_back("XDG_DATA_HOME", disk); // the log is on the full disk, too
    mFolder.write("disk/out.mp4", "older");
    const ProcessResult result = tarn::testing::runProcess(start);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("20025"));
    EXPECT_TRUE(readFile(disk + "/out.mp4") == "older");
    EXPECT_EQ(tarn::FileUtils().getFiles(disk), std::vector<std::string>{"out.mp4"});
    ::umount2(disk.c_str(), MNT_DETACH);
    EXPECT_TRUE(isSourceWhole());
}

} // namespace
} // namespace e2e
