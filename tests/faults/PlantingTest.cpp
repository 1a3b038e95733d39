// Libraries left where a careless search would find them.

#include "faults/FaultFixture.h"
#include "platform/Library.h"

#include <filesystem>

namespace e2e {
namespace {

namespace fs = std::filesystem;

class Planting : public FaultFixture {
protected:
    /// Puts libraries into a folder under every name that the program looks for.
    static void plant(const std::string& folder, const fs::path& from = {}) {
        for (const std::string name : {"mediaconverter", "zelclient", "zelcore"}) {
            const std::string file = tarn::platform::libraryFileName(name);
            fs::copy_file(from.empty() ? fs::path(PLANTED_LIBRARY) : from / file,
                          fs::path(folder) / file, fs::copy_options::overwrite_existing);
        }
    }
    /// Whether a planted library was loaded.
    bool isTaken(Process::Start start, int status) const {
        const std::string marker = mData / "loaded";
        start.environment.emplace_back("PLANTED_MARKER", marker);
        EXPECT_EQ(runProcess(start).status, status);
        return tarn::FileUtils().remove(marker);
    }
    const fs::path mProgram = fs::canonical(command({}).command.front());
    const fs::path mRuntime = mProgram.parent_path().parent_path() / "runtime";
};

TEST_F(Planting, NothingBesideTheProgramInTheWorkingFolderOrInASearchPathIsLoaded) {
    const std::string programs = mFolder.makeFolder("bin");
    plant(programs);
    plant(mFolder.path()); // the working folder
    fs::copy_file(mProgram, programs + "/record-converter");
    fs::create_directory_symlink(mRuntime, mFolder / "runtime");
    Process::Start start = command({mSource, mDestination});
    start.command.front() = programs + "/record-converter";
    start.environment.emplace_back("LD_LIBRARY_PATH", mFolder.path() + ":" + programs);
    start.environment.emplace_back("PATH", mFolder.path() + ":" + programs);
    EXPECT_FALSE(isTaken(start, 0));
    EXPECT_TRUE(isDestinationWhole());
    // Only in the engine folder itself: there it is taken, and so would have told.
    EXPECT_TRUE(isTaken(command({"--engine-folder", programs, mSource, mDestination}), 2));
}

TEST_F(Planting, ARuntimeFolderThatOthersCanWriteIsWarnedAbout) {
    const std::string folder = mFolder.makeFolder("engine");
    plant(folder, mRuntime);
    for (const fs::perms rights : {fs::perms(0755), fs::perms::all}) {
        fs::permissions(folder, rights);
        EXPECT_EQ(launch({"--engine-folder", folder, mSource, mDestination}).status, 0);
        EXPECT_EQ(logged("can be changed by other users") > 0, rights == fs::perms::all);
    }
}

} // namespace
} // namespace e2e
