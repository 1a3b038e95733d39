#include "launcher/SourceStaging.h"
#include "platform/Files.h"
#include "platform/Identity.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

namespace launcher {
namespace {

using tarn::testing::readFile;
using ::testing::IsEmpty;

class Staging : public ::testing::Test {
protected:
    /// The staging folders that are left in a folder.
    static std::vector<std::string> leftIn(const std::string& parent) {
        std::vector<std::string> names;
        const auto entries =
            tarn::platform::listFolder(parent, ".record-converter-sources-*").value();
        for (const tarn::platform::FolderEntry& entry : entries) {
            names.push_back(entry.name);
        }
        return names;
    }

    tarn::testing::TemporaryFolder recordings;
    tarn::testing::TemporaryFolder results;
};

TEST_F(Staging, DeletingASecondNameKeepsTheSource) {
    const std::string other = recordings.makeFolder("other");
    const std::vector<std::string> sources{recordings.write("a.part.mkv", "first"),
                                           recordings.write("other/a.part.mkv", "second"),
                                           recordings.write("none", "third")};
    {
        const SourceStaging staging(sources, results.path());
        ASSERT_EQ(staging.paths().size(), 3U);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NE(staging.paths()[i], sources[i]);
            EXPECT_TRUE(tarn::FileUtils().isSameFile(staging.paths()[i], sources[i]));
        }
        EXPECT_TRUE(tarn::FileUtils().remove(staging.paths()[0]));
    }
    EXPECT_EQ(readFile(sources[0]) + readFile(sources[1]) + readFile(sources[2]),
              "firstsecondthird");
    for (const std::string& folder : {recordings.path(), other, results.path()}) {
        EXPECT_THAT(leftIn(folder), IsEmpty());
    }
}

TEST_F(Staging, ASourceThatCanNotBeStagedLeavesNothing) {
    const std::string source = recordings.write("a.mkv", "x");
    const SourceStaging staging({source, recordings / "gone.mkv"}, results.path());
    EXPECT_THAT(staging.paths(), IsEmpty());
    EXPECT_THAT(leftIn(recordings.path()), IsEmpty());
    EXPECT_THAT(leftIn(results.path()), IsEmpty());
}

TEST_F(Staging, CopiesASourceThatCanNotBeLinked) {
    // Linux: no folder can be made beside this source, and no hard link leads to that file system.
    const tarn::FileUtils files;
    const std::string source = "/proc/self/exe";
    const std::string far = "/dev/shm/staging-" + std::to_string(tarn::platform::processId());
    if (!files.exists(source) || !files.mkdir(far)) {
        GTEST_SKIP() << "needs /proc and /dev/shm";
    }
    {
        const SourceStaging staging({source}, far);
        ASSERT_EQ(staging.paths().size(), 1U);
        EXPECT_TRUE(staging.paths()[0].starts_with(far));
        EXPECT_FALSE(files.isSameFile(staging.paths()[0], source));
        EXPECT_EQ(files.getFileSize(staging.paths()[0]), files.getFileSize(source));
    }
    EXPECT_THAT(leftIn(far), IsEmpty());
    EXPECT_TRUE(files.removeEmptyDir(far));
}

TEST_F(Staging, ClearsWhatAKilledProcessLeftAndNothingElse) {
    const std::string source = recordings.write("a.mkv", "x");
    const std::string prefix = ".record-converter-sources-";
    const std::string own = prefix + tarn::platform::computerName().value_or("") + "-";
    const std::string reused = own + std::to_string(tarn::platform::processId());
    const std::string elsewhere = prefix + "another-computer-4294967";
    const std::string unnumbered = own + "1x";
    for (const std::string& name : {own + "4294967", reused, elsewhere, unnumbered}) {
        recordings.makeFolder(name);
    }
    { const SourceStaging staging({source}, results.path()); }
    EXPECT_THAT(leftIn(recordings.path()), ::testing::UnorderedElementsAre(elsewhere, unnumbered));
}

} // namespace
} // namespace launcher
