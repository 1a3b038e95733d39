#include "platform/Files.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace tarn::platform {
namespace {

std::wstring inLibraries(const std::string& name) {
    return toWide(FileUtils().directoryOfPath(programFile()) + "libraries\\" + name);
}

TEST(WindowsLibrary, SystemSearchLooksForDependenciesInTheSystemFolderOnly) {
    EXPECT_EQ(loadWithSystemSearchPath(inLibraries("plugin.dll")), nullptr);
    EXPECT_EQ(lastError(), static_cast<std::uint32_t>(ERROR_MOD_NOT_FOUND));
    LibraryHandle library =
        loadWithSystemSearchPath(toWide(systemLibraryFolders().at(0) + "\\version.dll"));
    ASSERT_NE(library, nullptr) << lastError();
    EXPECT_NE(findSymbol(library, "GetFileVersionInfoSizeW"), nullptr);
    EXPECT_TRUE(unload(library));
}

TEST(WindowsLibrary, FindsWhatAPlainLoadNeedsInAnAddedFolder) {
    const tarn::testing::TemporaryFolder temporary;
    const std::string file = temporary / "plugin.dll";
    ASSERT_TRUE(copyFileContents(toUtf8(inLibraries("plugin.dll")), file));
    const auto load = [&] { return LoadLibraryW(toWide(file).c_str()); }; // as Qt does
    EXPECT_EQ(load(), nullptr);
    EXPECT_FALSE(addLibraryFolder(L"relative"));
    EXPECT_EQ(load(), nullptr);
    ASSERT_TRUE(addLibraryFolder(inLibraries("")));
    const HMODULE library = load();
    ASSERT_NE(library, nullptr) << lastError();
    EXPECT_TRUE(unload(library));
}

} // namespace
} // namespace tarn::platform
