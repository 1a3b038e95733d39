#pragma once

namespace tarn {

/// Opens the tool's log files, registers them with the root logger and sets its level to Debug.
/// Once per process, before anything is logged.
void setUpLogging();

/// Has the root logger mask the computer's and the user's name, the profile folder and the home
/// path in every line. Right after setUpLogging().
void blockListPersonalData();

} // namespace tarn
