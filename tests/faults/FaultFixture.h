#pragma once

#include "e2e/LauncherFixture.h"

#include <string>

namespace e2e {

/// Converts a recording of some megabytes by the real program, with the calls of its process made
/// to fail, and looks afterwards whether anything was lost.
class FaultFixture : public LauncherFixture {
protected:
    FaultFixture() { startAgain(); }

    /// The recording is there and the destination is not.
    void startAgain() const {
        tarn::FileUtils().remove(mDestination);
        tarn::FileUtils().copyFile(FAULTS_RECORDING, mSource);
    }
    /// `rules` as FaultyCalls.cpp reads them; none: nothing fails.
    Process::Start faulty(const std::string& rules, std::vector<std::string> arguments) const {
        Process::Start start = command(std::move(arguments));
        // A preloaded library comes before the sanitizers' own, which they take for a mistake.
        start.environment.insert(start.environment.end(),
                                 {{"LD_PRELOAD", FAULTY_CALLS_LIBRARY},
                                  {"FAULTY_CALLS", rules},
                                  {"ASAN_OPTIONS", "verify_asan_link_order=0"}});
        return start;
    }
    ProcessResult convert(const std::string& rules = {}) const {
        ProcessResult result =
            runProcess(faulty(rules, {"--delete-sources", mSource, mDestination}));
        // Its status for a leak is the one of a failed conversion.
        EXPECT_FALSE(result.errors.contains("Sanitizer")) << result.errors;
        return result;
    }

    bool isSourceWhole() const {
        static const std::string content = readFile(FAULTS_RECORDING);
        return exists(mSource) && readFile(mSource) == content;
    }
    /// As the one of a run without faults.
    bool isDestinationWhole() const {
        static const std::string content = [this] {
            const tarn::testing::TemporaryFolder folder;
            Process::Start start = command({FAULTS_RECORDING, folder / "out.mp4"});
            start.environment.emplace_back("XDG_DATA_HOME", folder.path());
            EXPECT_EQ(runProcess(start).status, 0);
            return readFile(folder / "out.mp4");
        }();
        return exists(mDestination) && readFile(mDestination) == content;
    }
    /// Neither a temporary nor anything else but recording and destination.
    void expectTidy() const {
        EXPECT_THAT(filesLeft(), ::testing::Each(::testing::AnyOf("meeting.mkv", "out.mp4")));
    }

    std::string mSource = mFolder / "meeting.mkv";
};

} // namespace e2e
