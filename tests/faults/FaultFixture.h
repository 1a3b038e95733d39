#pragma once

#include "e2e/LauncherFixture.h"
#include "utils/FileUtils.h"

#include <string>

namespace e2e {

/// Converts a recording of some megabytes by the real program, with the calls of its process made
/// to fail, and looks afterwards whether anything was lost.
class FaultFixture : public LauncherFixture {
protected:
    FaultFixture();

    /// `rules` as FaultyCalls.cpp reads them; none: nothing fails.
    Process::Start faulty(const std::string& rules, std::vector<std::string> arguments) const;
    ProcessResult convert(const std::string& rules = {}) const;

    /// The recording is there and the destination is not.
    void startAgain() const;

    /// The promise: a complete recording, or what becomes of it in a run without faults.
    void expectNothingLost() const;
    bool isSourceWhole() const;
    bool isDestinationWhole() const;
    /// Neither a temporary nor anything else but recording and destination.
    void expectTidy() const;

    std::string mSource = mFolder / "meeting.mkv";
};

/// The content of the destination that an undisturbed run makes of the recording.
const std::string& undisturbedDestination();

} // namespace e2e
