// Libraries left where a careless search would find them.

#include "faults/FaultFixture.h"
#include "platform/Library.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace e2e {
namespace {

using ::testing::HasSubstr;
namespace fs = std::filesystem;

class Planting : public FaultFixture {
protected:
    /// Puts the planted library into a folder under every name that the program looks for.
    static void plant(const std::string& folder) {
        for (const std::string name : {"mediaconverter", "zelclient", "zelcore"}) {
            fs::copy_file(PLANTED_LIBRARY, fs::path(folder) / tarn::platform::libraryFileName(name),
                          fs::copy_options::overwrite_existing);
        }
    }
    std::string marker() const { return mData / "loaded"; }
    ProcessResult run(Process::Start start) const {
        start.environment.emplace_back("PLANTED_MARKER", marker());
        return tarn::testing::runProcess(start);
    }
};

TEST_F(Planting, NothingBesideTheProgramInTheWorkingFolderOrInASearchPathIsLoaded) {
    plant(mFolder.path()); // the working folder
    const std::string programs = mFolder.makeFolder("bin");
    plant(programs);
    Process::Start start = command({mSource, mDestination});
    const fs::path own = fs::canonical(start.command.front());
    fs::copy_file(own, programs + "/record-converter");
    fs::create_directory_symlink(own.parent_path().parent_path() / "runtime", mFolder / "runtime");
    start.command.front() = programs + "/record-converter";
    start.environment.emplace_back("LD_LIBRARY_PATH", mFolder.path() + ":" + programs);
    start.environment.emplace_back("PATH", mFolder.path() + ":" + programs);
    const ProcessResult result = run(start);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_FALSE(exists(marker()));
    EXPECT_TRUE(isDestinationWhole());
}

TEST_F(Planting, AnEngineFolderIsTheOnlyPlaceAndMustBeNamed) {
    // The other way round: the planted library in the engine folder is loaded, so it would tell.
    const std::string folder = mFolder.makeFolder("engine");
    plant(folder);
    EXPECT_EQ(run(command({"--engine-folder", folder, mSource, mDestination})).status, 2);
    EXPECT_TRUE(exists(marker()));

    tarn::FileUtils().remove(marker());
    const std::string empty = mFolder.makeFolder("empty");
    plant(mFolder.path());
    for (const std::string& named : {std::string(), std::string("empty"), empty}) {
        EXPECT_EQ(run(command({"--engine-folder", named, mSource, mDestination})).status, 2);
        EXPECT_FALSE(exists(marker())) << named;
    }
    EXPECT_TRUE(isSourceWhole());
}

TEST_F(Planting, ARuntimeFolderThatOthersCanWriteIsWarnedAbout) {
    const fs::path runtime =
        fs::canonical(fs::path(command({}).command.front()).parent_path() / ".." / "runtime");
    const std::string folder = mFolder.makeFolder("engine");
    for (const std::string name : {"mediaconverter", "zelclient", "zelcore"}) {
        fs::copy_file(runtime / tarn::platform::libraryFileName(name),
                      folder + "/" + tarn::platform::libraryFileName(name));
    }
    for (const bool isOpen : {false, true}) {
        fs::permissions(folder, isOpen ? fs::perms::all : fs::perms(0755));
        const ProcessResult result = launch({"--engine-folder", folder, mSource, mDestination});
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(logged("can be changed by other users") > 0, isOpen);
    }
}

} // namespace
} // namespace e2e
