#include "launcher/SourceStaging.h"
#include "platform/Files.h"
#include "platform/Identity.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

namespace launcher {
namespace {

using tarn::testing::readFile;
using tarn::testing::TemporaryFolder;
using ::testing::IsEmpty;

class Staging : public ::testing::Test {
protected:
    /// The staging folders that are left in a folder.
    static std::vector<std::string> leftIn(const std::string& parent) {
        const auto entries = tarn::platform::listFolder(parent, ".record-converter-sources-*");
        std::vector<std::string> names;
        for (const tarn::platform::FolderEntry& entry : entries.value()) {
            names.push_back(entry.name);
        }
        return names;
    }

    TemporaryFolder recordings;
    TemporaryFolder results;
};

TEST_F(Staging, DeletingASecondNameKeepsTheSource) {
    const std::string other = recordings.makeFolder("other");
    const std::vector<std::string> sources{recordings.write("a.part.mkv", "first"),
                                           tarn::FileUtils().joinPath(other, "a.part.mkv"),
                                           recordings.write("none", "third")};
    ASSERT_TRUE(tarn::FileUtils().copyFile(sources[0], sources[1]));
    {
        const SourceStaging staging(sources, results.path());
        ASSERT_EQ(staging.paths().size(), 3U);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NE(staging.paths()[i], sources[i]);
            EXPECT_TRUE(tarn::FileUtils().isSameFile(staging.paths()[i], sources[i]));
        }
        EXPECT_TRUE(tarn::FileUtils().remove(staging.paths()[0]));
    }
    EXPECT_EQ(readFile(sources[0]), "first");
    EXPECT_EQ(readFile(sources[1]), "first");
    EXPECT_EQ(readFile(sources[2]), "third");
    EXPECT_THAT(leftIn(recordings.path()), IsEmpty());
    EXPECT_THAT(leftIn(other), IsEmpty());
    EXPECT_THAT(leftIn(results.path()), IsEmpty());
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
    const std::string dead = own + "4294967";
    const std::string reused = own + std::to_string(tarn::platform::processId());
    const std::string elsewhere = prefix + "another-computer-4294967";
    const std::string unnumbered = own + "1x";
    for (const std::string& name : {dead, reused, elsewhere, unnumbered}) {
        recordings.makeFolder(name);
    }
    { const SourceStaging staging({source}, results.path()); }
    EXPECT_THAT(leftIn(recordings.path()), ::testing::UnorderedElementsAre(elsewhere, unnumbered));
}

} // namespace
} // namespace launcher
