#pragma once

namespace tarn {

enum class PreviousRun {
    PutAside, ///< its files get the names of the last run
    Continue  ///< this run's lines follow in its current file
};

/// Opens the tool's log files, registers them with the root logger and sets its level to Debug.
/// Once per process, before anything is logged.
void setUpLogging(PreviousRun previousRun = PreviousRun::PutAside);

/// Has the root logger mask the computer's and the user's name, the profile folder and the home
/// path in every line. Right after setUpLogging().
void blockListPersonalData();

} // namespace tarn
