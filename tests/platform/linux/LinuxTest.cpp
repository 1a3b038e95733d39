#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Wildcard.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace tarn::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

TEST(Wildcard, KnowsOnlyStarAndQuestionMark) {
    const std::tuple<std::string, const char*, bool> cases[] = {
        {"", "*", true},       {"abc", "a*c", true},
        {"abc", "?b?", true},  {"会議.log", "??.log", true},
        {"abab", "*ab", true}, {"a[b]\\c", "a[b]\\c", true},
        {"", "?", false},      {"abc", "a*b", false},
        {"abc", "??", false},  {"b", "[b]", false},
        {"abc", "ABC", false}, {std::string(5000, 'a'), "*a*a*a*a*b", false},
    };
    for (const auto& [name, pattern, isMatch] : cases) {
        EXPECT_EQ(matchesWildcard(name, pattern), isMatch) << name << " " << pattern;
    }
}

TEST(LinuxFiles, NeverWalkThroughLinksAndKeepNamesThatAreNotUtf8) {
    const TemporaryFolder folder;
    const FileUtils files;
    const std::string outside = folder.makeFolder("outside");
    const std::string odd = folder.write("outside/latin-\xE4", "x");
    const std::string tree = folder.makeFolder("tree");
    std::filesystem::create_directory_symlink(outside, folder / "tree/link");
    std::filesystem::create_directory_symlink(outside, folder / "link");
    std::filesystem::create_symlink(odd, folder / "tree/second name");
    EXPECT_THAT(files.getFilesRecursive(tree), ElementsAre(folder / "tree/second name"));
    EXPECT_THAT(files.getFilesSortedByDate(tree, true), ElementsAre(folder / "tree/second name"));
    EXPECT_TRUE(files.deleteAllFiles(tree, "*"));
    EXPECT_THAT(files.getFiles(tree), IsEmpty());
    EXPECT_THAT(files.getDirs(tree), IsEmpty());
    EXPECT_TRUE(files.exists(folder / "tree/link"));
    EXPECT_TRUE(files.removeNonEmptyDir(folder / "link"));
    EXPECT_TRUE(files.removeNonEmptyDir(tree));
    EXPECT_THAT(files.getFilesRecursive(folder.path()), ElementsAre(odd));
}

TEST(LinuxKnownFolders, FollowTheEnvironmentWhenItIsAbsolute) {
    setenv("HOME", "/home/someone/", 1);
    setenv("XDG_DATA_HOME", "/data//", 1);
    EXPECT_EQ(localApplicationDataFolder(), "/data");
    EXPECT_EQ(profileFolder(), "/home/someone");
    setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(localApplicationDataFolder(), "/home/someone/.local/share");
    unsetenv("HOME");
    EXPECT_TRUE(isAbsolutePath(profileFolder()));
    EXPECT_EQ(homePath(), std::nullopt);
}

} // namespace
} // namespace tarn::platform
