#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/windows/SystemPath.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>

namespace tarn::platform {
namespace {

using ::testing::ElementsAre;

class WindowsFiles : public ::testing::Test {
protected:
    /// Opens a file as another program does.
    static HANDLE hold(const std::string& path, DWORD sharing) {
        return CreateFileW(systemPath(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
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

TEST(WindowsFolders, TellAbsolutePathsFromOthers) {
    for (const char* path :
         {"C:\\", "c:/x", "\\\\server\\share", "//server/share", "\\\\?\\C:\\x"}) {
        EXPECT_TRUE(isAbsolutePath(path)) << path;
    }
    for (const char* path : {"", "C:", "C:x", "\\x", "/x", "x\\y", "1:\\x", "\\\\"}) {
        EXPECT_FALSE(isAbsolutePath(path)) << path;
    }
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

} // namespace
} // namespace tarn::platform
