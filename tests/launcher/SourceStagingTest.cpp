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

const std::string kPrefix = ".record-converter-sources-";

/// The staging folders that are left in a folder.
std::vector<std::string> leftIn(const std::string& parent) {
    std::vector<std::string> names;
    const auto entries = tarn::platform::listFolder(parent, kPrefix + "*").value();
    for (const auto& entry : entries) {
        names.push_back(entry.name);
    }
    return names;
}

class Staging : public ::testing::Test {
protected:
    tarn::FileUtils files;
    tarn::testing::TemporaryFolder recordings;
    tarn::testing::TemporaryFolder results;
};

TEST_F(Staging, DeletingASecondNameKeepsTheSourceAndAFailureLeavesNothing) {
    const std::string other = recordings.makeFolder("other");
    std::vector<std::string> sources{recordings.write("a.part.mkv", "first"),
                                     recordings.write("other/a.part.mkv", "second")};
    {
        const SourceStaging staging(sources, results.path());
        ASSERT_EQ(staging.paths().size(), 2U);
        for (std::size_t i = 0; i < 2; ++i) {
            EXPECT_NE(staging.paths()[i], sources[i]);
            EXPECT_TRUE(files.isSameFile(staging.paths()[i], sources[i]));
            EXPECT_TRUE(files.remove(staging.paths()[i]));
        }
    }
    EXPECT_EQ(readFile(sources[0]) + readFile(sources[1]), "firstsecond");
    sources.push_back(recordings / "gone.mkv");
    const SourceStaging failed(sources, results.path());
    EXPECT_THAT(failed.paths(), IsEmpty());
    for (const std::string& folder : {recordings.path(), other, results.path()}) {
        EXPECT_THAT(leftIn(folder), IsEmpty());
    }
}

TEST_F(Staging, CopiesASourceThatCanNotBeLinked) {
    // Linux: no folder can be made beside this source, and no hard link leads to that file system.
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
    const std::string own = kPrefix + tarn::platform::computerName().value_or("") + "-";
    const std::string reused = own + std::to_string(tarn::platform::processId());
    const std::string elsewhere = kPrefix + "another-computer-4294967";
    const std::string unnumbered = own + "1x";
    for (const std::string& name : {own + "4294967", reused, elsewhere, unnumbered}) {
        recordings.makeFolder(name);
    }
    const std::string source = recordings.write("a.mkv", "x");
    { const SourceStaging staging({source}, results.path()); }
    EXPECT_THAT(leftIn(recordings.path()), ::testing::UnorderedElementsAre(elsewhere, unnumbered));
}

} // namespace
} // namespace launcher
