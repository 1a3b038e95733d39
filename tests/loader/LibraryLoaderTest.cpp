#include "loader/LibraryLoader.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "support/RecordingLogHook.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tarn::loader {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

class LibraryLoader : public ::testing::Test {
protected:
    LibraryHandle load(const std::string& name, const std::string& from) {
        mLoaded = loadLibrary(platform::toWide(name).c_str(), platform::toWide(from));
        return mLoaded;
    }
    void copyHere(const std::string& name) const {
        ASSERT_TRUE(
            FileUtils().copyFile(FileUtils().joinPath(LOADER_LIBRARIES, name), folder / name));
    }
    static int call(LibraryHandle library, const char* function) {
        void* symbol = platform::findSymbol(library, function);
        return symbol != nullptr ? reinterpret_cast<int (*)()>(symbol)() : -1;
    }
    ~LibraryLoader() override {
        if (mLoaded != nullptr) {
            EXPECT_TRUE(platform::unload(mLoaded));
        }
    }

    const testing::TemporaryFolder folder;
    const testing::RecordingLogHook log;
    const std::string plain = platform::libraryFileName("loader_plain");
    const std::string dependent = platform::libraryFileName("loader_dependent");

private:
    LibraryHandle mLoaded = nullptr;
};

TEST_F(LibraryLoader, LoadsFromTheFolderWithTwoLines) {
    copyHere(plain);
    const auto size = FileUtils().getFileSize(folder / plain);
    EXPECT_EQ(call(load(plain, folder.path()), "plainAnswer"), 42);
    EXPECT_THAT(log.lines(), ElementsAre("<Debug> Load " + plain +
                                             ", exists: true, size: " + std::to_string(size),
                                         "<Debug> Loaded " + plain + " with altered paths"));
}

TEST_F(LibraryLoader, FindsNeighboursInTheLibrarysOwnFolder) {
    copyHere(dependent);
    EXPECT_EQ(platform::findSymbol(nullptr, "plainAnswer"), nullptr);
    copyHere(platform::libraryFileName("loader_neighbour"));
    EXPECT_EQ(call(load(dependent, folder.path()), "dependentAnswer"), 43);
}

TEST_F(LibraryLoader, TriesTheSystemFolderForAMissingFile) {
    EXPECT_EQ(load(plain, folder.path()), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("<Debug> Load " + plain + ", exists: false, size: -1",
                                         "<Error> Failed to load " + plain + ", errorCode: " +
                                             std::to_string(platform::lastError())));
    log.clear();
    const std::string name = platform::pathSeparator() == '\\' ? "version.dll" : "libm.so.6";
    EXPECT_NE(load(name, folder.path()), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("<Debug> Load " + name + ", exists: false, size: -1",
                                         "<Debug> Loaded " + name));
}

// The working folder and the system's plain search path both hold the libraries here.
TEST_F(LibraryLoader, NeverLoadsFromARelativeOrEmptyFolder) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(LOADER_LIBRARIES);
    for (const std::string from : {"", ".", "../loader-libraries"}) {
        log.clear();
        EXPECT_EQ(load(plain, from), nullptr) << from;
        EXPECT_THAT(log.lines(), ElementsAre("<Debug> Load " + plain + ", exists: false, size: -1",
                                             "<Warn> Refused to load " + plain + " from '" + from +
                                                 "': not an absolute folder",
                                             StartsWith("<Error> Failed to load " + plain)));
    }
    EXPECT_EQ(safeLoadLibrary(platform::toWide(plain)), nullptr);
    EXPECT_EQ(loadSystemLibrary(platform::toWide(plain)), nullptr);
    std::filesystem::current_path(before);
}

TEST_F(LibraryLoader, TakesBareNamesOnly) {
    copyHere(plain);
    const std::string below = folder.makeFolder("below");
    for (const std::string& name : {"../" + plain, "..\\" + plain, folder / plain, std::string()}) {
        EXPECT_EQ(load(name, below), nullptr) << name;
        EXPECT_EQ(loadSystemLibrary(platform::toWide(name)), nullptr) << name;
    }
    EXPECT_EQ(loadLibrary(nullptr, platform::toWide(folder.path())), nullptr);
}

} // namespace
} // namespace tarn::loader
