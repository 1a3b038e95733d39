#include "loader/LibraryLoader.h"
#include "platform/Text.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace tarn::loader {
namespace {

using ::testing::ElementsAre;

class LibraryLoader : public ::testing::Test {
protected:
    LibraryLoader() { testing::expectErrorLine(""); }
    ~LibraryLoader() override {
        if (mLoaded != nullptr) {
            EXPECT_TRUE(platform::unload(mLoaded));
        }
    }
    bool loads(const std::string& name, const std::string& from) {
        log.take();
        mLoaded = loadLibrary(platform::toWide(name).c_str(), platform::toWide(from));
        return mLoaded != nullptr;
    }
    int call(const char* function) const {
        return reinterpret_cast<int (*)()>(platform::findSymbol(mLoaded, function))();
    }
    void copyHere(const std::string& name) const {
        ASSERT_TRUE(
            FileUtils().copyFile(FileUtils().joinPath(LOADER_LIBRARIES, name), folder / name));
    }

    const testing::TemporaryFolder folder;
    const testing::HookedLog log;
    const std::string plain = platform::libraryFileName("loader_plain");

private:
    LibraryHandle mLoaded = nullptr;
};

TEST_F(LibraryLoader, LoadsWithTwoLinesAndFindsNeighboursInTheLibrarysOwnFolder) {
    const std::string name = platform::libraryFileName("loader_dependent");
    copyHere(name);
    copyHere(platform::libraryFileName("loader_neighbour"));
    const auto size = FileUtils().getFileSize(folder / name);
    ASSERT_TRUE(loads(name, folder.path()));
    EXPECT_EQ(call("dependentAnswer"), 43);
    EXPECT_THAT(log.lines(), ElementsAre("<Debug> Load " + name +
                                             ", exists: true, size: " + std::to_string(size),
                                         "<Debug> Loaded " + name + " with altered paths"));
}

TEST_F(LibraryLoader, TriesTheSystemFolderForAMissingFile) {
    EXPECT_FALSE(loads(plain, folder.path()));
    EXPECT_THAT(log.lines(), ElementsAre("<Debug> Load " + plain + ", exists: false, size: -1",
                                         "<Error> Failed to load " + plain + ", errorCode: " +
                                             std::to_string(platform::lastError())));
    const std::string name = FileUtils().pathSeparator() == "\\" ? "version.dll" : "libm.so.6";
    EXPECT_TRUE(loads(name, folder.path()));
    EXPECT_THAT(log.lines(), ElementsAre("<Debug> Load " + name + ", exists: false, size: -1",
                                         "<Debug> Loaded " + name));
}

// The working folder and the system's plain search path both hold the libraries here.
TEST_F(LibraryLoader, NeverLoadsFromARelativeOrEmptyFolder) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(LOADER_LIBRARIES);
    for (const std::string from : {"", ".", "../loader-libraries"}) {
        EXPECT_FALSE(loads(plain, from)) << from;
        EXPECT_THAT(log.lines(), ::testing::Contains("<Warn> Refused to load " + plain + " from '" +
                                                     from + "': not an absolute folder"));
    }
    EXPECT_EQ(safeLoadLibrary(platform::toWide(plain)), nullptr);
    EXPECT_EQ(loadSystemLibrary(platform::toWide(plain)), nullptr);
    std::filesystem::current_path(before);
}

TEST_F(LibraryLoader, TakesBareNamesOnly) {
    copyHere(plain);
    const std::string below = folder.makeFolder("below");
    for (const std::string& name : {"../" + plain, "..\\" + plain, folder / plain, std::string()}) {
        EXPECT_FALSE(loads(name, below)) << name;
        EXPECT_EQ(loadSystemLibrary(platform::toWide(name)), nullptr) << name;
    }
}

} // namespace
} // namespace tarn::loader
