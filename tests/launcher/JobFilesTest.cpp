#include "launcher/JobFiles.h"
#include "launcher/Texts.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

namespace launcher {
namespace {

using tarn::testing::readFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(JobFiles, RemovesWhatItKnowsOnceThereIsSomethingToShowForIt) {
    const tarn::FileUtils files;
    const tarn::testing::TemporaryFolder folder;
    const std::string first = folder.write("a.mkv", "a");
    const std::string changed = folder.write("b.mkv", "b");
    const std::string replaced = folder.write("c.mkv", "c");
    const std::string destination = folder.write("out.mp4", "older");
    const JobFiles jobFiles(
        {{first, changed, replaced, first, folder / "gone.mkv"}, destination, "", true, true});
    EXPECT_EQ(jobFiles.totalSize(), 4U);
    EXPECT_FALSE(jobFiles.isDestinationWritten());
    EXPECT_EQ(jobFiles.removeSources().size(), 5U);

    folder.write("new", "n");
    ASSERT_TRUE(files.remove(destination) && files.rename(folder / "new", destination));
    folder.write("b.mkv", "b, and more");
    folder.write("new", "c");
    ASSERT_TRUE(files.remove(replaced) && files.rename(folder / "new", replaced));
    EXPECT_TRUE(jobFiles.isDestinationWritten());
    EXPECT_THAT(jobFiles.removeSources(),
                ElementsAre(HasSubstr("b.mkv\" (it has changed)"),
                            HasSubstr("c.mkv\" (it has changed)"), HasSubstr("gone.mkv\"")));
    EXPECT_FALSE(files.exists(first));
    EXPECT_EQ(readFile(changed) + readFile(replaced), "b, and morec");
    folder.write("out.mp4", "");
    EXPECT_FALSE(jobFiles.isDestinationWritten());
}

TEST(Texts, ShowWhatWouldDriveATerminal) {
    EXPECT_EQ(visible("a\n\x1B[2J\t\xC2\x85\xE2\x80\xA8\xE2\x80\xAE\xE2\x81\xA6\xFF\\ \xC3\xBC"),
              "a\\n\\x1b[2J\\t\\u0085\\u2028\\u202e\\u2066\\xff\\ \xC3\xBC");
}

} // namespace
} // namespace launcher
