#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/windows/SystemPath.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>

namespace tarn::platform {
namespace {

using tarn::testing::readFile;
using ::testing::ElementsAre;

class WindowsFiles : public ::testing::Test {
protected:
    /// Opens a file as another program does.
    static HANDLE hold(const std::string& path, DWORD sharing) {
        return CreateFileW(systemPath(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    static void setReadOnly(const std::string& path, bool isReadOnly = true) {
        SetFileAttributesW(systemPath(path).c_str(),
                           isReadOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    }
    const tarn::testing::TemporaryFolder folder;
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

TEST_F(WindowsFiles, TellFilesThatOthersHaveOpen) {
    const std::string file = folder.write("recording.mkv", "12345");
    const std::string other = folder.write("new", "");
    HANDLE held = hold(file, 0);
    EXPECT_EQ(fileDetails(file).value().size, 5U);
    EXPECT_FALSE(removeFile(file));
    EXPECT_EQ(errno, EACCES);
    EXPECT_FALSE(renamePath(file, folder / "other.mkv"));
    EXPECT_FALSE(renamePath(other, file)) << "it is there already";
    EXPECT_EQ(errno, EEXIST);
    EXPECT_FALSE(copyFileContents(file, folder / "copy.mkv"));
    EXPECT_EQ(errno, EACCES);
    EXPECT_THAT(FileUtils().getFiles(folder.path()), ElementsAre("new", "recording.mkv"));
    CloseHandle(held);
}

TEST_F(WindowsFiles, CopyReplacesWholeOrNotAtAll) {
    const std::string source = folder.write("new.txt", "new");
    const std::string target = folder.write("old.txt", "old");
    HANDLE held = hold(target, FILE_SHARE_READ);
    EXPECT_FALSE(copyFileContents(source, target));
    CloseHandle(held);
    setReadOnly(target);
    EXPECT_FALSE(copyFileContents(source, target));
    EXPECT_EQ(readFile(target), "old");
    setReadOnly(target, false);
    // A source that is read-only itself: its copy is too, and the temporary leaves no trace.
    setReadOnly(source);
    EXPECT_TRUE(copyFileContents(source, target));
    EXPECT_EQ(readFile(target), "new");
    EXPECT_EQ(fileDetails(source).value().modified, fileDetails(target).value().modified);
    EXPECT_FALSE(copyFileContents(source, target)) << "the target is read-only now";
    EXPECT_THAT(FileUtils().getFiles(folder.path()), ElementsAre("new.txt", "old.txt"));
    setReadOnly(source, false);
    setReadOnly(target, false);
}

TEST_F(WindowsFiles, PatternsMatchLongNamesWithoutRegardToCase) {
    for (const char* name : {"Log.TXT", "log.txt2", "plain", "GRÖSSE.txt"}) {
        folder.write(name, "");
    }
    for (const auto& [pattern, count] : {std::pair{"*.txt", 2U}, {"grösse.*", 1U}, {"*.*", 4U}}) {
        EXPECT_EQ(listFolder(folder.path(), pattern)->size(), count) << pattern;
    }
    EXPECT_FALSE(listFolder(folder / "absent"));
    EXPECT_EQ(errno, ENOENT);
}

} // namespace
} // namespace tarn::platform
