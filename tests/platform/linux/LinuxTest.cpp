#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "platform/Wildcard.h"
#include "support/RecordingLogHook.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    const auto matches = [](std::string_view both) { // name, blank, pattern
        return matchesWildcard(both.substr(0, both.find(' ')), both.substr(both.find(' ') + 1));
    };
    for (const char* both : {" ", " *", "abc *", "abc a*c", "abc *b*", "abc ?b?", "a[b]\\c a[b]\\c",
                             "会議.log ??.log", "aab *ab", "abab *ab", ".hidden *"}) {
        EXPECT_TRUE(matches(both)) << both;
    }
    for (const char* both : {"a ", " ?", "abc a*b", "abc ??", "b [b]", "abc ABC"}) {
        EXPECT_FALSE(matches(both)) << both;
    }
    EXPECT_FALSE(matches(std::string(5000, 'a') + " *a*a*a*a*a*b"));
}

TEST(LinuxFiles, NeverWalkThroughLinks) {
    const TemporaryFolder folder;
    const FileUtils files;
    const std::string outside = folder.makeFolder("outside");
    folder.write("outside/kept", "x");
    const std::string tree = folder.makeFolder("tree");
    std::filesystem::create_directory_symlink(outside, folder / "tree/link");
    EXPECT_THAT(files.getFilesRecursive(tree), ElementsAre(folder / "tree/link"));
    EXPECT_THAT(files.getDirs(tree), IsEmpty());
    std::filesystem::create_directory_symlink(outside, folder / "link");
    EXPECT_TRUE(files.removeNonEmptyDir(folder / "link"));
    EXPECT_TRUE(files.removeNonEmptyDir(tree));
    EXPECT_EQ(testing::readFile(folder / "outside/kept"), "x");
}

TEST(LinuxFiles, KeepNamesThatAreNotUtf8) {
    const TemporaryFolder folder;
    EXPECT_TRUE(FileUtils().writeOneLine(folder / "latin-\xE4", "x"));
    EXPECT_EQ(listFolder(folder.path())->front().name, "latin-\xE4");
}

TEST(LinuxFiles, CopyKeepsPermissionsAndLeavesNothingBehindOnFailure) {
    const TemporaryFolder folder;
    const std::string source = folder.write("source", "content");
    chmod(source.c_str(), 0640);
    ASSERT_TRUE(copyFileContents(source, folder / std::string(255, 'n')));
    struct stat status {};
    ASSERT_EQ(stat((folder / std::string(255, 'n')).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    folder.makeFolder("taken");
    folder.write("taken/by", "something");
    EXPECT_FALSE(copyFileContents(source, folder / "taken"));
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(copyFileContents(folder / "pipe", folder / "copy"));
    EXPECT_TRUE(copyFileContents("/proc/self/status", folder / "pseudo"));
    EXPECT_THAT(testing::readFile(folder / "pseudo"), ::testing::HasSubstr("Pid:"));
    EXPECT_THAT(FileUtils().getFiles(folder.path()),
                ElementsAre(std::string(255, 'n'), "pipe", "pseudo", "source"));
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
    const testing::RecordingLogHook log;
    const auto errorOf = [](const std::string& path) {
        EXPECT_EQ(loadWithAlteredSearchPath(toWide(path)), nullptr);
        return static_cast<int>(lastError());
    };
    EXPECT_EQ(errorOf(folder / "absent.so"), ENOENT);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(errorOf(folder.path()), EISDIR);
    EXPECT_EQ(errorOf(folder.write("text.so", "text")), ELIBBAD);
    EXPECT_EQ(errorOf(folder.write("elf.so", std::string("\177ELF") + std::string(99, 'x'))),
              ELIBACC);
    EXPECT_EQ(log.lines().size(), 3U);
    EXPECT_THAT(log.lines().back(), ::testing::StartsWith("<Debug> dlopen: "));
}

} // namespace
} // namespace tarn::platform
