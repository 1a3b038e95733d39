#include "loader/AcceptedSigners.h"
#include "loader/FakePolicySources.h"
#include "loader/LibraryLoader.h"
#include "support/RecordingLogHook.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn::loader {
namespace {

TEST(LibraryLoaderOnWindows, NeverLoadsARefusedFileFromItsFolder) {
    const testing::TemporaryFolder folder;
    const testing::RecordingLogHook log;
    const std::string name = platform::libraryFileName("loader_plain");
    testing::FakePolicySources machine;
    machine.localData = folder.path();
    machine.protect(std::wstring(kAcceptedSigners[0]));
    const std::string launcher = folder.makeFolder("QuorellTarnLauncher");
    const std::wstring path = platform::toWide(FileUtils().joinPath(launcher, name));
    ASSERT_TRUE(
        FileUtils().copyFile(FileUtils().joinPath(LOADER_LIBRARIES, name), platform::toUtf8(path)));
    const SideLoadingPolicy policy(machine);
    const auto load = [&] {
        return loadLibrary(platform::toWide(name).c_str(), platform::toWide(launcher), policy);
    };
    EXPECT_EQ(safeLoadLibrary(path, policy), nullptr);
    EXPECT_EQ(load(), nullptr);
    EXPECT_THAT(log.lines().back(), ::testing::StartsWith("<Error> Failed to load " + name));
    machine.signers[path] = kAcceptedSigners[0];
    LibraryHandle library = load();
    EXPECT_NE(library, nullptr);
    EXPECT_EQ(log.lines().back(), "<Debug> Loaded " + name + " with altered paths");
    EXPECT_TRUE(library == nullptr || platform::unload(library));
}

} // namespace
} // namespace tarn::loader
