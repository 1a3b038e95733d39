#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/windows/SystemPath.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>
#include <fstream>

namespace tarn::platform {
namespace {

using tarn::testing::readFile;
using tarn::testing::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

std::vector<std::string> names(const std::string& folder, std::string_view pattern = "*") {
    std::vector<std::string> found;
    const auto entries = listFolder(folder, pattern).value();
    for (const FolderEntry& entry : entries) {
        found.push_back(entry.name);
    }
    return found;
}

struct OpenFile {
    explicit OpenFile(const std::string& path, DWORD sharing)
        : handle(CreateFileW(systemPath(path).c_str(), GENERIC_READ, sharing, nullptr,
                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~OpenFile() { CloseHandle(handle); }
    HANDLE handle;
};

TEST(SystemPath, PrefixesOnlyWhatIsTooLong) {
    const std::wstring longName(250, L'n');
    EXPECT_EQ(systemPath(std::wstring(L"C:\\short")), L"C:\\short");
    EXPECT_EQ(systemPath(L"C:\\a/b\\..\\" + longName), L"\\\\?\\C:\\a\\" + longName);
    EXPECT_EQ(systemPath(L"\\\\server\\share\\" + longName),
              L"\\\\?\\UNC\\server\\share\\" + longName);
    EXPECT_EQ(systemPath(L"\\\\?\\C:\\" + longName), L"\\\\?\\C:\\" + longName);
    EXPECT_TRUE(systemPath(longName).starts_with(L"\\\\?\\")) << "relative to the working folder";
    EXPECT_EQ(systemPath(std::wstring(L"C:\\a\0b", 6)), L"") << "names no other file";
}

TEST(WindowsFiles, WorkBeyond260CharactersAndAscii) {
    const TemporaryFolder temporary;
    std::string folder = temporary.path();
    for (int depth = 0; depth < 4; ++depth) {
        folder += "\\Größe 会議 😀 " + std::string(80, 'x');
        ASSERT_TRUE(makeFolder(folder)) << errno;
    }
    const std::string file = folder + "\\a.txt";
    std::ofstream(nativePath(file)) << "text";
    ASSERT_EQ(fileDetails(file).value().size, 4U);
    EXPECT_TRUE(fileDetails(folder).value().isFolder);
    EXPECT_TRUE(isFolderWritable(folder));
    EXPECT_TRUE(copyFileContents(file, folder + "\\b.txt"));
    EXPECT_TRUE(renamePath(folder + "\\b.txt", folder + "\\c.txt"));
    EXPECT_TRUE(makeHardLink(file, folder + "\\d.txt"));
    EXPECT_TRUE(isSameFile(file, folder + "\\d.txt"));
    EXPECT_FALSE(isSameFile(file, folder + "\\c.txt"));
    EXPECT_THAT(names(folder), UnorderedElementsAre("a.txt", "c.txt", "d.txt"));
    EXPECT_TRUE(removeFile(folder + "\\c.txt"));
    EXPECT_FALSE(removeEmptyFolder(folder));
    EXPECT_EQ(errno, ENOTEMPTY);
}

TEST(WindowsFiles, TellFilesThatOthersHaveOpen) {
    const TemporaryFolder folder;
    const std::string file = folder.write("recording.mkv", "12345");
    const OpenFile held(file, 0);
    EXPECT_EQ(fileDetails(file).value().size, 5U);
    EXPECT_FALSE(removeFile(file));
    EXPECT_EQ(errno, EACCES);
    EXPECT_FALSE(renamePath(file, folder / "other.mkv"));
    EXPECT_FALSE(renamePath(folder.write("new", ""), file)) << "it is there already";
    EXPECT_EQ(errno, EEXIST);
    EXPECT_TRUE(removeFile(folder / "new"));
    EXPECT_FALSE(copyFileContents(file, folder / "copy.mkv"));
    EXPECT_EQ(errno, EACCES);
    EXPECT_THAT(names(folder.path()), ElementsAre("recording.mkv"));
}

TEST(WindowsFiles, CopyReplacesWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const std::string source = folder.write("new.txt", "new");
    const std::string target = folder.write("old.txt", "old");
    {
        const OpenFile held(target, FILE_SHARE_READ);
        EXPECT_FALSE(copyFileContents(source, target));
    }
    SetFileAttributesW(systemPath(target).c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(copyFileContents(source, target));
    EXPECT_EQ(readFile(target), "old");
    SetFileAttributesW(systemPath(target).c_str(), FILE_ATTRIBUTE_NORMAL);
    // A source that is read-only itself: its copy is too, and the temporary leaves no trace.
    SetFileAttributesW(systemPath(source).c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(copyFileContents(source, target));
    EXPECT_EQ(readFile(target), "new");
    EXPECT_EQ(fileDetails(source).value().modified, fileDetails(target).value().modified);
    EXPECT_FALSE(copyFileContents(source, target)) << "the target is read-only now";
    EXPECT_THAT(names(folder.path()), UnorderedElementsAre("new.txt", "old.txt"));
    SetFileAttributesW(systemPath(source).c_str(), FILE_ATTRIBUTE_NORMAL);
    SetFileAttributesW(systemPath(target).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(WindowsFiles, PatternsMatchLongNamesWithoutRegardToCase) {
    const TemporaryFolder folder;
    for (const char* name : {"Log.TXT", "log.txt2", "plain", "GRÖSSE.txt"}) {
        folder.write(name, "");
    }
    EXPECT_THAT(names(folder.path(), "*.txt"), UnorderedElementsAre("Log.TXT", "GRÖSSE.txt"));
    EXPECT_THAT(names(folder.path(), "größe.*"), ElementsAre());
    EXPECT_THAT(names(folder.path(), "grösse.*"), ElementsAre("GRÖSSE.txt"));
    EXPECT_EQ(names(folder.path(), "*.*").size(), 4U);
    EXPECT_FALSE(listFolder(folder / "absent"));
    EXPECT_EQ(errno, ENOENT);
}

} // namespace
} // namespace tarn::platform
