#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "platform/Wildcard.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

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

TEST(LinuxFiles, CopyKeepsPermissionsAndLeavesNothingBehindOnFailure) {
    const TemporaryFolder folder;
    const std::string source = folder.write("source", "content");
    const std::string longest = folder / std::string(255, 'n');
    chmod(source.c_str(), 0640);
    ASSERT_TRUE(copyFileContents(source, longest));
    EXPECT_EQ(std::filesystem::status(longest).permissions(), std::filesystem::perms(0640));
    folder.makeFolder("taken");
    EXPECT_FALSE(copyFileContents(source, folder / "taken"));
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(copyFileContents(folder / "pipe", folder / "copy"));
    EXPECT_TRUE(copyFileContents("/proc/self/status", folder / "pseudo"));
    EXPECT_THAT(testing::readFile(folder / "pseudo"), ::testing::HasSubstr("Pid:"));
    EXPECT_EQ(FileUtils().getFiles(folder.path()).size(), 4U);
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

TEST(LinuxLibrary, TellsWhyAFileDoesNotLoad) {
    const TemporaryFolder folder;
    const testing::HookedLog log;
    testing::expectErrorLine("");
    const std::pair<std::string, int> cases[] = {
        {folder / "absent.so", ENOENT},
        {folder.path(), EISDIR},
        {folder.write("text.so", "text"), ELIBBAD},
        {folder.write("elf.so", "\177ELF" + std::string(99, 'x')), ELIBACC},
    };
    for (const auto& [path, error] : cases) {
        EXPECT_EQ(loadWithAlteredSearchPath(toWide(path)), nullptr);
        EXPECT_EQ(static_cast<int>(lastError()), error) << path;
    }
    EXPECT_EQ(log.lines().size(), 3U) << "none of an absent file";
    EXPECT_THAT(log.lines(), ::testing::Each(::testing::StartsWith("<Debug> dlopen: ")));
}

} // namespace
} // namespace tarn::platform
