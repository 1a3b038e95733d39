#include "launcher/window/SourceListEncoder.h"
#include "launcher/window/SourceStaging.h"
#include "platform/Files.h"
#include "recordconverter/SourceList.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace launcher {
namespace {

namespace fs = std::filesystem;
using tarn::testing::readFile;

class Staging : public ::testing::Test {
protected:
    /// The staging folders that are in a folder.
    static std::vector<std::string> stagedIn(const std::string& parent) {
        std::vector<std::string> names;
        const auto entries = tarn::platform::listFolder(parent, ".record-converter-*").value();
        for (const auto& entry : entries) {
            names.push_back(entry.name);
        }
        return names;
    }

    tarn::FileUtils files;
    tarn::testing::TemporaryFolder recordings;
    tarn::testing::TemporaryFolder results;
};

TEST_F(Staging, ClearsAwayWhatIsItsOwnAndAbandonedAndFollowsNoLink) {
    const std::string source = recordings.write("a.mkv", "x");
    const std::string victim = results.makeFolder("victim");
    const std::string treasure = results.write("victim/b.mkv", "kept");
    const auto plant = [&](const std::string& name, const std::string& mark, fs::perms open) {
        const std::string folder = recordings.makeFolder(name);
        recordings.makeFolder(name + "/" + mark);
        recordings.write(name + "/" + mark + "/a.mkv", "x");
        std::error_code ignored; // there may be no links
        fs::create_directory_symlink(victim, folder + "/" + mark + "/1", ignored);
        fs::permissions(folder, fs::perms::owner_all | open);
    };
    const std::string abandoned = ".record-converter-0123456789abcdef";
    const std::vector<std::string> others{".record-converter-old",
                                          ".record-converter-aaaaaaaaaaaaaaaa",
                                          ".record-converter-bbbbbbbbbbbbbbbb"};
    plant(abandoned, "second-names", fs::perms::none);
    plant(others[0], "second-names", fs::perms::none); // no name of ours
    plant(others[1], "1", fs::perms::none);            // a private folder, renamed by somebody
#ifndef _WIN32
    plant(others[2], "second-names", fs::perms::others_all); // others may have filled it
#endif
    {
        const SourceStaging first({source}, results.path());
        const SourceStaging second({source}, results.path());
        EXPECT_TRUE(files.exists(first.paths()[0]));
    }
    EXPECT_EQ(readFile(treasure), "kept");
#ifndef _WIN32
    EXPECT_THAT(stagedIn(recordings.path()), ::testing::UnorderedElementsAreArray(others));
#endif
}

TEST(SourceList, IsReadBackAsItWasAndSplitsNoCharacterInTwo) {
    const std::vector<std::string> parts{"C:\\10:30 \xC3\xBC.mkv", "C:\\10:30 \xC3\xB6.mkv"};
    EXPECT_EQ(recordconverter::expandSourceList(encodeSourceList(parts)), parts);
    EXPECT_EQ(encodeSourceList({"/\xC3\xBC", "/\xC3\xB6"}), "/.|\xC3\xBC:\xC3\xB6");
}

} // namespace
} // namespace launcher
